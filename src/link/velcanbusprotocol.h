#pragma once

#include "canbusexport.h"
#include "canbuslog.h"
#include "canbusprotocol.h"
#include "linkhealth.h"

#include <QtCore/QByteArray>
#include <QtCore/QMutex>
#include <QtCore/QThread>

#include <atomic>
#include <memory>

namespace canbus {

class VelCanBusProtocol;
class VelCanBusProtocolPrivate;

/// The received bytes that no frame has been made of yet: one buffer for the process.
///
/// The serial port's thread appends to it, the parser thread consumes it. Lock `mutex` around every access
/// to `data`. The parser thread holds it for a whole pass, dispatch of the frame included.
///
/// @thread{Any.}
class CANBUS_EXPORT CanBusReadBuff : public QObject {
    Q_OBJECT

public:
    /// The one buffer, made on first use and destroyed when the process exits.
    /// @return never null
    static CanBusReadBuff *instance();

    QByteArray data; ///< in order of arrival, still escaped
    QMutex mutex;    ///< not recursive

Q_SIGNALS:
    /// A block has come from the line: emitted by the serial port before the block is appended to `data` and
    /// without the lock. For recorders and counters: connect directly, and be quick.
    /// @param block  as it came from the line
    /// @emitted{The port's thread.}
    void received(QByteArray block);

private:
    CanBusReadBuff();
};

/// One decoded data frame. The protocol owns one and uses it for every frame.
///
/// @thread{The parser thread alone; a frame of one's own: its owner's.}
class CANBUS_EXPORT FrameDataFormat : public QObject {
    Q_OBJECT

public:
    /// An empty frame.
    FrameDataFormat() = default;

    /// Writes all fields to the debug log.
    void LogFrameData() const
    {
        CANBUS_DEBUG() << "id-" << id << "TP-" << TP << "MOD-" << MOD << "DATA-" << DATA << "CS-"
                       << logging::hex(CS);
    }

    /// Empties all fields. A payload that nobody else has keeps its storage for the next.
    void clear();

    QByteArray id;   ///< one byte, or none where the frame was too short
    QByteArray TP;   ///< category, one byte or none
    QByteArray MOD;  ///< sub-type, one byte or none
    QByteArray DATA; ///< payload, unescaped, any length
    quint8 CS = 0;   ///< the XOR over the frame
};

/// The parser thread: every 10 ms one parsing pass of its protocol under the mutex of CanBusReadBuff, so at
/// most one frame is consumed in 10 ms.
///
/// Runs until stop() is called. The protocol that made it stops it and waits for it.
///
/// @thread{That of its maker: the protocol's.}
class CANBUS_EXPORT CanbusTickThread : public QThread {
    Q_OBJECT

public:
    /// A thread that is not started yet.
    /// @param parent  its owner, or null
    /// @param protocol  driven by this thread; must outlive it. Null: the thread only ticks
    CanbusTickThread(QObject *parent, VelCanBusProtocol *protocol);

    /// Lets the loop end after the current pass. Does not wait.
    /// @thread{Any.}
    void stop();

    /// The loop of the thread; start() runs it. Returns at once after stop().
    /// @thread{The parser thread itself.}
    void run() override;

private:
    VelCanBusProtocol *m_protocol;
    std::atomic<bool> m_running {true};
};

/// The link protocol of the interface box: finds frames in the receive buffer, acknowledges and dispatches
/// them, sends commands until they are answered, and keeps the link alive.
///
/// Create it on the host's main thread, after which it connects itself to CanBusPlayer::sendCmdData(), its
/// parser thread runs, and the first connect request follows after two seconds. Give it to
/// CanBusPlayer::init(). It may be deleted, on its own thread, and a new one made; a host that leaves it
/// alive at the end of the process does no harm. Its parser thread ends with the application object at the
/// latest: a process that makes a second application object makes a second protocol.
///
/// The receive path (the steps of a pass, the answers, the parse operations) runs on the parser thread; the
/// timers' slots and commands run on the protocol's own. What both use, the state of sending, has a lock,
/// which is never held while a signal is emitted: a directly connected slot may call every operation here, on
/// either thread; those of the receive path want the mutex of CanBusReadBuff, which the parser thread holds
/// already. Signals about writing and about the link's state come out in the order of the decisions behind
/// them, on whichever of the two threads is at it.
///
/// @thread{The parser thread, or another that holds the mutex of CanBusReadBuff.}
class CANBUS_EXPORT VelCanBusProtocol : public CanbusProtocol {
    Q_OBJECT

public:
    /// Starts the parser thread and the time to the first connect request.
    /// @param parent  its owner, or null
    /// @thread{The host's main thread.}
    explicit VelCanBusProtocol(QObject *parent = nullptr);

    /// Stops the parser thread and waits for the pass that it may be in.
    /// @thread{The host's main thread.}
    ~VelCanBusProtocol() override;

    /// Feeds the serial loop-back test: bytes that begin with '1' are answered by the text "716151413121".
    /// @param data  as they came from the line
    /// @thread{The host's main thread.}
    void analyseData(QByteArray data) override;
    /// Compares the bytes that analyseData() has collected, answers them or not, and forgets them.
    /// @thread{The host's main thread.}
    void TestSerialPort();

    /// The link's figures and the fates of its commands.
    /// @return never null; owned by the protocol
    /// @thread{Any, as long as the protocol is there.}
    Q_INVOKABLE canbus::LinkHealth *linkHealth() const override;

    // The steps of a parsing pass, all over the data of CanBusReadBuff, whose mutex the caller holds.

    /// Searches the opening mark from the beginning on.
    /// @return the index behind it, or -1
    int onSearchDLE();
    /// Searches the closing mark. Sends a NACK when a data frame's closing escape waits for its second byte.
    /// @param start  the index to search from; -1 finds nothing
    /// @return the index behind it, or -1
    int onSearchDLE_ETX(int start);
    /// Takes one of each two doubled escapes out of the buffer's data.
    /// @param start, end  indices of the frame: the first one looked at, and the one behind the last
    void onRemoveEscapeFrameHeaders(int start, int end);
    /// Clears the decoded frame and computes its check byte.
    /// @param start, end  indices of the frame, unescaped: its first byte, and behind its closing mark
    /// @return whether the frame's own check byte is the same
    bool checkXOR(int start, int end);
    /// Copies the bytes of the frame from the buffer's data, closing mark included.
    /// @param start, end  indices of its first byte and behind its closing mark; an end of -1 copies nothing
    void onProcessingFrameData(int start, int end);
    /// Hands the frame to its handling: NACK, ACK or data.
    void onCategoryDataProcessing();
    /// Decodes a data frame, dispatches and acknowledges it.
    void onReceiveSaveData();
    /// Removes the first byte; logs where there is none.
    /// @param data  of any length
    void removeData1Bit(QByteArray &data);
    /// Calls the parse operation of the decoded frame's category. A category without one is passed over.
    void onAllocateData();

    // The answers.

    void receiveModuleAck();      ///< sends an ACK with the id of the decoded frame
    void receiveModuleNAck();     ///< sends a NACK with the id of the decoded frame, of the last one or none
    void onReceiveSaveACKData();  ///< an ACK has arrived
    void onReceiveSaveNACKData(); ///< a NACK has arrived: it removes the frame just as an ACK does

    // The send cache.

    /// Sends the head of the cache and restarts the period of retransmission, 300 ms.
    /// @thread{The protocol's or the parser thread.}
    void restartSendTmr();
    /// Removes the frame under way if it has this id, as acknowledged, and sends the next.
    /// @param id  of the answer, any byte
    /// @thread{The protocol's or the parser thread.}
    void removeSendCmdData(char id);

    // The parse operations: each stores the frame's record in CanBusDataMap and emits the category's signal.

    /// The box's part of the handshake: no signal.
    /// @param frame  decoded; not null
    void parse_GetVersion(FrameDataFormat *frame);
    /// The screens that the box supports: emits notifyScreensInfo().
    /// @param frame  decoded; not null
    void parse_ScreensInfo(FrameDataFormat *frame);
    /// A climate report: emits notifyClimateInfo().
    /// @param frame  decoded; not null
    void parse_ClimateInfo(FrameDataFormat *frame);
    /// A gauges report: emits notifyGaugesInfo().
    /// @param frame  decoded; not null
    void parse_GaugesInfo(FrameDataFormat *frame);
    /// A vehicle report: emits notifyVehicleInfo().
    /// @param frame  decoded; not null
    void parse_VehicleInfo(FrameDataFormat *frame);
    /// A parking report: emits notifyParingAssistInfo().
    /// @param frame  decoded; not null
    void parse_ParingAssistInfo(FrameDataFormat *frame);
    /// A request for another screen: emits notifyScreensTransition().
    /// @param frame  decoded; not null
    void parse_ScreensTransition(FrameDataFormat *frame);
    /// The menu or text screen: emits notifyTextScreen().
    /// @param frame  decoded; not null
    void parse_TextScreen(FrameDataFormat *frame);

public Q_SLOTS:
    /// One parsing pass: at most one frame.
    void onParseDataTmrout();
    /// Sends a connection check.
    /// @thread{The protocol's or the parser thread.}
    void onCheckConnectTmrout();
    /// Sends a connect request; until the box is ready, frames that are given up are not a lost link.
    /// @thread{The protocol's or the parser thread.}
    void onRequestConnect();
    /// Resends the current frame, or gives it up after its third transmission.
    /// @thread{The protocol's: the host's main thread.}
    void onSendTmrout();
    /// Caches one complete frame and sends the head of the cache. With 65 frames cached it is refused, which
    /// is logged.
    /// @param data  from 9F 02 to 9F 03, escaped
    /// @thread{The protocol's or the parser thread.}
    void onSaveSendCmdData(QByteArray data);

private:
    using ParseOperation = void (VelCanBusProtocol::*)(FrameDataFormat *);
    static ParseOperation parseOperationFor(quint8 tp);

    std::unique_ptr<VelCanBusProtocolPrivate> d;
};

} // namespace canbus
