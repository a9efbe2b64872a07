#pragma once

#include "canbusexport.h"

#include <QtCore/QByteArray>
#include <QtCore/QObject>

namespace canbus {

class LinkHealth;

/// What the facade expects of a link protocol: blocks of bytes to be written, the state of the link, and
/// one signal for each category that the box reports.
///
/// The host creates the concrete protocol (VelCanBusProtocol), keeps it, and hands it to
/// CanBusPlayer::init(). The object lives on the host's main thread, but its signals may be emitted on the
/// parser thread too: receivers on the main thread get those queued.
///
/// In the signals `TPMOD` is one byte, the frame's sub-type, and `data` is the frame's payload, unescaped,
/// of any length including none.
class CANBUS_EXPORT CanbusProtocol : public QObject {
    Q_OBJECT

public:
    explicit CanbusProtocol(QObject *parent = nullptr);
    ~CanbusProtocol() override;

    /// Takes bytes just as they came from the line, in blocks of any size. The facade calls it on the main
    /// thread. What is received also reaches the protocol through CanBusReadBuff; this is the way for what
    /// is not framed.
    virtual void analyseData(QByteArray data) = 0;

    /// What the link has been through; lives as long as the protocol. Null where a protocol does not count:
    /// this implementation.
    virtual LinkHealth *linkHealth() const;

Q_SIGNALS:
    /// A complete block of bytes for the serial port. A signal, in spite of its name.
    void onWritPortData(QByteArray data);
    /// The link is up (true) or down (false). Repeated with every acknowledged connection check. Comes on
    /// either thread: a receiver that has only one of them queued hears them out of order. CanBusPlayer's
    /// canbusConnectStatus() is in order.
    void notifyCanbusStatus(bool status);
    /// The vehicle screens that the box supports.
    void notifyScreensInfo(QByteArray data);
    void notifyClimateInfo(QByteArray TPMOD, QByteArray data);
    void notifyGaugesInfo(QByteArray TPMOD, QByteArray data);
    void notifyVehicleInfo(QByteArray TPMOD, QByteArray data);
    void notifyParingAssistInfo(QByteArray TPMOD, QByteArray data);
    /// The box asks for another screen, or for a move on the current one.
    void notifyScreensTransition(QByteArray data);
    /// The box's menu or text screen.
    void notifyTextScreen(QByteArray data);
};

} // namespace canbus
