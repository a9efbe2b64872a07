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
///
/// @thread{The host's main thread, on which the protocol lives.}
/// @emitted{The parser thread.}
class CANBUS_EXPORT CanbusProtocol : public QObject {
    Q_OBJECT

public:
    /// A protocol that no port is joined to.
    /// @param parent  its owner, or null
    explicit CanbusProtocol(QObject *parent = nullptr);
    /// For the host to delete the concrete protocol by.
    ~CanbusProtocol() override;

    /// Takes bytes just as they came from the line. The facade calls it with what the port has read. What is
    /// received also reaches the protocol through CanBusReadBuff; this is the way for what is not framed.
    /// @param data  a block of any size
    virtual void analyseData(QByteArray data) = 0;

    /// What the link has been through; lives as long as the protocol.
    /// @return null where a protocol does not count: this implementation
    virtual LinkHealth *linkHealth() const;

Q_SIGNALS:
    /// A complete block of bytes for the serial port. A signal, in spite of its name.
    /// @param data  as it goes on the line
    /// @emitted{The protocol's thread or the parser thread, in the order of the decisions behind the blocks.}
    void onWritPortData(QByteArray data);
    /// The link is up or down. Repeated with every acknowledged connection check. A receiver that has only
    /// one of the two threads queued hears it out of order; CanBusPlayer::canbusConnectStatus() is in order.
    /// @param status  true when the link is up
    /// @emitted{The protocol's thread or the parser thread.}
    void notifyCanbusStatus(bool status);
    /// The vehicle screens that the box supports.
    /// @param data  the payload: bits 0..4 of its first byte are the screens 0..4
    void notifyScreensInfo(QByteArray data);
    /// A climate report.
    /// @param TPMOD  one byte, the sub-type
    /// @param data  the payload
    void notifyClimateInfo(QByteArray TPMOD, QByteArray data);
    /// A gauges report.
    /// @param TPMOD  one byte, the sub-type
    /// @param data  the payload
    void notifyGaugesInfo(QByteArray TPMOD, QByteArray data);
    /// A vehicle report.
    /// @param TPMOD  one byte, the sub-type
    /// @param data  the payload
    void notifyVehicleInfo(QByteArray TPMOD, QByteArray data);
    /// A parking report.
    /// @param TPMOD  one byte, the sub-type
    /// @param data  the payload
    void notifyParingAssistInfo(QByteArray TPMOD, QByteArray data);
    /// The box asks for another screen, or for a move on the current one.
    /// @param data  the payload: its first byte is the request code
    void notifyScreensTransition(QByteArray data);
    /// The box's menu or text screen.
    /// @param data  the payload: four identifiers, flags, zero-terminated texts
    void notifyTextScreen(QByteArray data);
};

} // namespace canbus
