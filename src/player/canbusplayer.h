#pragma once

#include "canbusexport.h"

#include <QtCore/QByteArray>
#include <QtCore/QDebug>
#include <QtCore/QList>
#include <QtCore/QMap>
#include <QtCore/QObject>
#include <QtCore/QString>
#include <QtCore/QStringList>

#include <displaystate.h>

class QThread;

namespace canbus {

namespace logging {
struct Origin;
}

class CanBusPlayerPrivate;
class CanbusProtocol;

/// The service's facade: opens the port, joins it to the protocol, routes what the box reports to the feature
/// groups, and is the one outlet for commands to the box.
///
/// Usage, on the host's main thread:
///
///     canbus::CanBusPlayer::instance()->setUartPort("/dev/ttyS3", 57600);
///     canbus::CanBusPlayer::instance()->init(new canbus::VelCanBusProtocol);
///
/// The player lives on the thread that first calls instance(), which must be the host's main thread. The port
/// lives on a worker thread of its own from init() on. Nothing needs to be stopped: the threads end with the
/// application object or the process.
///
/// @thread{The host's main thread, on which the player lives.}
/// @emitted{The host's main thread.}
class CANBUS_EXPORT CanBusPlayer : public QObject {
    Q_OBJECT

public:
    /// The player, made on first use and destroyed when the process exits.
    /// @return never null
    static CanBusPlayer *instance();

    /// The box's menu or text screen: what updateMenuInfo() announces.
    struct TextScreen {
        QList<int> menu; ///< four identifiers 0..255; empty before the box has shown one
        /// Whether the screen offers a minus button.
        bool minus = false;
        /// Whether the screen offers a plus button.
        bool plus = false;
        /// The screen's texts, cleaned of bytes that are no UTF-8.
        QStringList texts;
    };

    /// A further player, for tests: the groups send through the one of instance().
    /// @param parent  its owner, or null
    explicit CanBusPlayer(QObject *parent = nullptr);
    /// Leaves the port, its thread and the protocol alone.
    ~CanBusPlayer() override;

    /// Sets up the board's pins, opens the port and, if that succeeds, joins it to the protocol and the
    /// player to the host; then moves the port to its worker thread. Call it once, after setUartPort().
    /// Called again it opens the port again and makes every connection a second time; from a slot on
    /// another thread it does so later, on the player's own.
    /// @param protocol  the host's, who may delete it, on the main thread, and call init() with a new one;
    ///   null is logged as an error, and leaves the open port without a protocol
    void init(CanbusProtocol *protocol);

    /// The protocol that is joined to the port.
    /// @return null before the first init() that has opened the port, and once the host has deleted it
    CanbusProtocol *protocol() const;

    /// Sets the serial device for the next init().
    /// @param port  for example "/dev/ttyS3", the default
    /// @param baud  bits per second, 57600 by default
    Q_INVOKABLE void setUartPort(const QString &port, int baud);

    /// Whether the link to the box is up.
    /// @return as canbusConnectStatus() has last said; false at first
    Q_INVOKABLE bool getCanbusConnectStatus();

    /// The vehicle screens that the box supports.
    /// @return a flag for each of the numbers 0..4; empty before the box has said so
    Q_INVOKABLE QMap<int, bool> getSuppScrennInfo();

    /// Emits updateMenuInfo() with the text screen as it is, if it has more than one text: for a UI that has
    /// bound late.
    Q_INVOKABLE void getTextScreenInfo();

    /// The text screen as it is, one with a single text too.
    /// @return with an empty menu before the box has shown one
    TextScreen textScreen() const;

    /// Sends a press on the text screen. The low byte of each argument is sent as it is.
    /// @param menu, item, action  0..255 each, as the box defines them
    Q_INVOKABLE void onMenuPress(int menu, int item, int action);

    /// Tells the box that the display shows none of its screens.
    Q_INVOKABLE void requestNormal();

    /// Whether the box's camera picture is to be shown: while the link is up, the box has a camera screen and
    /// the head unit's settings want it, on every display but the one without camera; otherwise on the box's
    /// camera view alone.
    /// @return true when it is to be shown
    Q_INVOKABLE bool getCanbusCameraEnable();

    /// Sends the head unit's clock to the box. The low byte of each argument is sent; 255 in all six means
    /// "time unknown".
    /// @param minute  0..59
    /// @param hour  0..23
    /// @param day  of the month, 1..31
    /// @param month  1..12
    /// @param year  full year, for example 2026: sent as two bytes, 20 and 26; 255 is sent as 255, 255
    /// @param format  the clock format as the box defines it, 0 or 1: passed on as it came
    Q_INVOKABLE void syncGPSTimeToCanbus(int minute, int hour, int day, int month, int year, int format);

    // Helpers for whoever reads payloads or builds frames. They keep no state.

    /// Appends zero-terminated texts to a list, cleaned.
    /// @param list  what stands in it stays
    /// @param data  texts in UTF-8; bytes behind the last zero byte are dropped
    /// @thread{Any.}
    void onSplitEOFstrings(QStringList &list, QByteArray data);
    /// Removes every U+FFFD, which stands for bytes that are no UTF-8.
    /// @param text  cleaned in place
    /// @thread{Any.}
    void removeGarbledCodeFromUtf8(QString &text);
    /// The state of two bits.
    /// @param value  the byte
    /// @param bit0, bit1  positions 0..7, lowest first; any other reads as 0
    /// @return 0..3
    /// @thread{Any.}
    int on2bitComparisonStates(char value, int bit0, int bit1);
    /// The state of three bits.
    /// @param value  the byte
    /// @param bit0, bit1, bit2  positions 0..7, lowest first; any other reads as 0
    /// @return 0..6; 7 reads as 0
    /// @thread{Any.}
    int on3bitComparisonStates(char value, int bit0, int bit1, int bit2);
    /// The state of four bits.
    /// @param value  the byte
    /// @param bit0, bit1, bit2, bit3  positions 0..7, lowest first; any other reads as 0
    /// @return 0..8; 9..15 read as 0
    /// @thread{Any.}
    int on4bitComparisonStates(char value, int bit0, int bit1, int bit2, int bit3);
    /// Appends a byte to a frame, twice if it is 0x9F.
    /// @param byte  any
    /// @param frame  what stands in it stays
    /// @thread{Any.}
    void onEscapeFrameHeader(char byte, QByteArray &frame);

Q_SIGNALS:
    /// One complete frame for the box. The protocol caches, sends and resends it.
    /// @param data  from 9F 02 to 9F 03, escaped
    /// @emitted{The thread of the control that sends: the host's main thread.}
    void sendCmdData(QByteArray data);
    /// The vehicle screens that the box supports. Emitted with every report, changed or not.
    /// @param m_list  a flag for each of the numbers 0..4
    void updateScreenInfo(QMap<int, bool> m_list);
    /// The link has come up or gone down. Emitted on a change only.
    /// @param status  true when it is up
    void canbusConnectStatus(bool status);
    /// The box's menu or text screen. Emitted on a change, and by getTextScreenInfo().
    /// @param Menu  four identifiers 0..255
    /// @param Minus, Plus  whether the button is offered
    /// @param Text  the texts, cleaned of bytes that are no UTF-8
    void updateMenuInfo(QList<int> Menu, bool Minus, bool Plus, QStringList Text);

public Q_SLOTS:
    /// Hands received bytes to the protocol's loop-back test.
    /// @param data  as they came from the line
    void readPortData(QByteArray data);
    /// Writes to the port at once, on the calling thread. Dropped before init().
    /// @param data  as they go on the line
    /// @thread{Any, where the host knows that nothing else writes meanwhile.}
    void writPortData(QByteArray data);
    /// The protocol's report of the link: starts or stops the time synchronisation, leaves the box's view
    /// when the link goes down, emits canbusConnectStatus() on a change.
    /// @param status  true when the link is up
    void setCanbusConnectStatus(bool status);
    /// The host shows another display: while the link is up, asks the box for the data of that screen.
    void onCanbusSourceDsplChange();
    /// Sends the clock and waits for the next full minute; stops while the link is down.
    void onSyncTimeTmrout();
    /// The box's supported screens. Emits updateScreenInfo(), changed or not.
    /// @param data  bits 0..4 of the first byte are the screens 0..4; a missing byte reads as 0
    void suppScreen(QByteArray data);
    /// A climate report: handed to the climate group. An unknown sub-type is logged as an error.
    /// @param TPMOD  one byte, the sub-type: 0..2
    /// @param data  the payload, unescaped
    void onClimateInfo(QByteArray TPMOD, QByteArray data);
    /// A gauges report: handed to the gauges group. An unknown sub-type is logged as an error.
    /// @param TPMOD  one byte, the sub-type: 0..5
    /// @param data  the payload, unescaped
    void onGaugesInfo(QByteArray TPMOD, QByteArray data);
    /// A vehicle report: handed to the vehicle group. An unknown sub-type is logged as an error.
    /// @param TPMOD  one byte, the sub-type: 0..2
    /// @param data  the payload, unescaped
    void onVehicleInfo(QByteArray TPMOD, QByteArray data);
    /// A parking report: handed to the parking group. An unknown sub-type is logged as an error.
    /// @param TPMOD  one byte, the sub-type: 0..2
    /// @param data  the payload, unescaped
    void onParingAssistInfo(QByteArray TPMOD, QByteArray data);
    /// The box asks the UI for a move, which is delivered to the application object as a host event.
    /// @param data  the request code in the first byte, 0..4; any other is logged as an error
    void onChangeDsp(QByteArray data);
    /// The box's menu or text screen. Emits updateMenuInfo() on a change.
    /// @param data  four menu identifiers, a byte with minus (bit 0) and plus (bit 1), zero-terminated texts
    ///   in UTF-8; missing bytes read as 0
    void onTextScreen(QByteArray data);
    /// Reverse gear was engaged (true) or released (false): enters or leaves the box's camera view by host
    /// events. The second argument is the host's own, and ignored.
    void onReverseChanged(bool, int);

private:
    friend struct CanBusPlayerProbe; // the tests' look at the wiring

    void initOnOwnThread(CanbusProtocol *protocol);
    void join(const logging::Origin &origin, CanbusProtocol *protocol);
    void startWorkerThread();
    bool isCameraInUse(const logging::Origin &origin) const;

    QThread *thread = nullptr; // the port's worker; never deleted
    CanBusPlayerPrivate *d;
};

} // namespace canbus

/// Writes a display state by its name, or as a number where it has none.
/// @param debug  what is written to
/// @param state  any number, named or not
/// @return `debug`, for the next value
/// @thread{That of `debug`; no state is kept.}
CANBUS_EXPORT QDebug operator<<(QDebug debug, C::DSPLState state);
