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
/// The player lives on the thread that first calls instance(), which must be the host's main thread; call
/// everything here on that thread. The port lives on a worker thread of its own from init() on. Nothing
/// needs to be stopped: the threads end with the application object or the process.
class CANBUS_EXPORT CanBusPlayer : public QObject {
    Q_OBJECT

public:
    /// Made on first use, destroyed when the process exits.
    static CanBusPlayer *instance();

    /// The box's menu or text screen: what updateMenuInfo() announces.
    struct TextScreen {
        QList<int> menu; ///< four identifiers 0..255; empty before the box has shown one
        bool minus = false;
        bool plus = false;
        QStringList texts;
    };

    explicit CanBusPlayer(QObject *parent = nullptr);
    ~CanBusPlayer() override;

    /// Sets up the board's pins, opens the port and, if that succeeds, joins it to the protocol and the
    /// player to the host; then moves the port to its worker thread. Call it once, after setUartPort().
    /// Called again it opens the port again and makes every connection a second time; from a slot on
    /// another thread it does so later, on the player's own.
    /// @param protocol  the host's, who may delete it, on the main thread, and call init() with a new one;
    ///   null is logged as an error, and leaves the open port without a protocol
    void init(CanbusProtocol *protocol);

    /// The protocol that is joined to the port: null before the first init() that has opened it, and once the
    /// host has deleted it.
    CanbusProtocol *protocol() const;

    /// Sets the serial device for the next init().
    /// @param port  for example "/dev/ttyS3", the default
    /// @param baud  bits per second, 57600 by default
    Q_INVOKABLE void setUartPort(const QString &port, int baud);

    /// Whether the link to the box is up.
    Q_INVOKABLE bool getCanbusConnectStatus();

    /// The vehicle screens that the box supports, by their numbers 0..4; empty before it has said so.
    Q_INVOKABLE QMap<int, bool> getSuppScrennInfo();

    /// Emits updateMenuInfo() with the text screen as it is, if it has more than one text: for a UI that has
    /// bound late.
    Q_INVOKABLE void getTextScreenInfo();

    /// The text screen as it is, one with a single text too.
    TextScreen textScreen() const;

    /// Sends a press on the text screen. The low byte of each argument is sent as it is.
    Q_INVOKABLE void onMenuPress(int menu, int item, int action);

    /// Tells the box that the display shows none of its screens.
    Q_INVOKABLE void requestNormal();

    /// Whether the box's camera picture is to be shown: while the link is up, the box has a camera screen and
    /// the head unit's settings want it, on every display but the one without camera; otherwise on the box's
    /// camera view alone.
    Q_INVOKABLE bool getCanbusCameraEnable();

    /// Sends the head unit's clock to the box. The low byte of each argument is sent; 255 in all six means
    /// "time unknown".
    /// @param year  full year, for example 2026: sent as two bytes, 20 and 26; 255 is sent as 255, 255
    /// @param format  the clock format as the box defines it, 0 or 1: passed on as it came
    Q_INVOKABLE void syncGPSTimeToCanbus(int minute, int hour, int day, int month, int year, int format);

    // Helpers for whoever reads payloads or builds frames. They keep no state; usable on every thread.

    /// Appends the zero-terminated UTF-8 strings in `data` to `list`, cleaned. Bytes behind the last zero
    /// byte are dropped.
    void onSplitEOFstrings(QStringList &list, QByteArray data);
    /// Removes every U+FFFD, which stands for bytes that are no UTF-8.
    void removeGarbledCodeFromUtf8(QString &text);
    /// The state of the named bits of `value`, lowest first: 0..3. A position outside 0..7 reads as 0.
    int on2bitComparisonStates(char value, int bit0, int bit1);
    /// As above, 0..6; 7 reads as 0.
    int on3bitComparisonStates(char value, int bit0, int bit1, int bit2);
    /// As above, 0..8; 9..15 read as 0.
    int on4bitComparisonStates(char value, int bit0, int bit1, int bit2, int bit3);
    /// Appends `byte` to `frame`, twice if it is 0x9F.
    void onEscapeFrameHeader(char byte, QByteArray &frame);

Q_SIGNALS:
    /// One complete frame for the box, from 9F 02 to 9F 03. The protocol caches, sends and resends it.
    void sendCmdData(QByteArray data);
    /// The vehicle screens that the box supports, by their numbers 0..4.
    void updateScreenInfo(QMap<int, bool> m_list);
    /// The link has come up (true) or gone down (false). Emitted on a change only.
    void canbusConnectStatus(bool status);
    /// The box's menu or text screen: four menu identifiers 0..255, whether minus and plus are offered, and
    /// the texts.
    void updateMenuInfo(QList<int> Menu, bool Minus, bool Plus, QStringList Text);

public Q_SLOTS:
    /// Hands received bytes to the protocol's loop-back test.
    void readPortData(QByteArray data);
    /// Writes to the port at once, on the calling thread: only for a host that knows that nothing else does.
    /// Dropped before init().
    void writPortData(QByteArray data);
    /// The protocol's report of the link: starts or stops the time synchronisation, leaves the box's view
    /// when the link goes down, emits canbusConnectStatus() on a change.
    void setCanbusConnectStatus(bool status);
    /// The host shows another display: while the link is up, asks the box for the data of that screen.
    void onCanbusSourceDsplChange();
    /// Sends the clock and waits for the next full minute; stops while the link is down.
    void onSyncTimeTmrout();
    /// The box's supported screens: bits 0..4 of the first byte. Emits updateScreenInfo(), changed or not.
    void suppScreen(QByteArray data);
    // The categories: the first byte of TPMOD, the sub-type, selects the decoder that gets `data`.
    void onClimateInfo(QByteArray TPMOD, QByteArray data);
    void onGaugesInfo(QByteArray TPMOD, QByteArray data);
    void onVehicleInfo(QByteArray TPMOD, QByteArray data);
    void onParingAssistInfo(QByteArray TPMOD, QByteArray data);
    /// The box asks the UI for a move: request code 0..4 in the first byte, delivered to the application
    /// object as a host event. Any other code is logged as an error.
    void onChangeDsp(QByteArray data);
    /// The box's menu or text screen: four menu identifiers, flags, zero-terminated texts. Emits
    /// updateMenuInfo() on a change.
    void onTextScreen(QByteArray data);
    /// Reverse gear was engaged or released: enters or leaves the box's camera view by host events.
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
CANBUS_EXPORT QDebug operator<<(QDebug debug, C::DSPLState state);
