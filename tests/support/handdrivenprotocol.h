#pragma once

#include "logrecorder.h"
#include "velcanbusprotocol.h"

#include <QtCore/QByteArray>
#include <QtCore/QCoreApplication>
#include <QtCore/QEvent>
#include <QtCore/QStringList>

#include <memory>
#include <utility>

/// The protocol, driven by hand on the test's own thread.
///
/// Holds the receive buffer's mutex as long as it exists, so that the protocol's parser thread stays out: the
/// test is the parser, and what the protocol emits comes directly and in order.
class HandDrivenProtocol {
public:
    HandDrivenProtocol()
    {
        buffer()->mutex.lock();
        buffer()->data.clear();
        m_protocol = std::make_unique<canbus::VelCanBusProtocol>();
        recordSignals();
    }

    ~HandDrivenProtocol()
    {
        buffer()->data.clear();
        buffer()->mutex.unlock();
        m_protocol.reset();
        // Nothing of this protocol's may reach the next test's.
        QCoreApplication::removePostedEvents(nullptr, QEvent::MetaCall);
    }

    canbus::VelCanBusProtocol *operator->() const { return m_protocol.get(); }
    canbus::VelCanBusProtocol *get() const { return m_protocol.get(); }

    LogRecorder &log() { return m_log; }

    static canbus::CanBusReadBuff *buffer() { return canbus::CanBusReadBuff::instance(); }

    /// Adds bytes to the receive buffer, as the serial port does.
    void arrive(const QByteArray &bytes) { buffer()->data += bytes; }

    void pass() { m_protocol->onParseDataTmrout(); }

    /// Bytes arrive and one pass follows. @return what it emitted
    QStringList passOver(const QByteArray &bytes)
    {
        arrive(bytes);
        pass();
        return takeEvents();
    }

    /// What has been emitted since the last call, in order: "write 9f..", "status true", "climate MOD DATA".
    QStringList takeEvents() { return std::exchange(m_events, QStringList()); }

    /// The send timer's expiry. @return what it emitted
    QStringList sendTimerExpires()
    {
        m_protocol->onSendTmrout();
        return takeEvents();
    }

    /// Carries out the calls that are queued for the timers, without letting a timer expire.
    static void runQueuedCalls() { QCoreApplication::sendPostedEvents(nullptr, QEvent::MetaCall); }

private:
    Q_DISABLE_COPY(HandDrivenProtocol)

    void recordSignals()
    {
        using Protocol = canbus::CanbusProtocol;
        QObject::connect(get(), &Protocol::notifyCanbusStatus, get(),
                         [this](bool up) { m_events += up ? "status true" : "status false"; });
        record("write", &Protocol::onWritPortData);
        record("screens", &Protocol::notifyScreensInfo);
        record("climate", &Protocol::notifyClimateInfo);
        record("gauges", &Protocol::notifyGaugesInfo);
        record("vehicle", &Protocol::notifyVehicleInfo);
        record("parking", &Protocol::notifyParingAssistInfo);
        record("transition", &Protocol::notifyScreensTransition);
        record("text", &Protocol::notifyTextScreen);
    }

    void record(const char *name, void (canbus::CanbusProtocol::*signal)(QByteArray))
    {
        QObject::connect(get(), signal, get(), [this, name](const QByteArray &data) {
            m_events += QStringLiteral("%1 %2").arg(name, QString::fromLatin1(data.toHex()));
        });
    }

    void record(const char *name, void (canbus::CanbusProtocol::*signal)(QByteArray, QByteArray))
    {
        QObject::connect(get(), signal, get(), [this, name](const QByteArray &mod, const QByteArray &data) {
            m_events += QStringLiteral("%1 %2 %3")
                            .arg(name, QString::fromLatin1(mod.toHex()), QString::fromLatin1(data.toHex()));
        });
    }

    LogRecorder m_log;
    std::unique_ptr<canbus::VelCanBusProtocol> m_protocol;
    QStringList m_events;
};
