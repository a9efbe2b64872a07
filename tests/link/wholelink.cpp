#include "wholelink.h"

#include "figurerules.h"

#include <datetimemanager.h>

#include <QtCore/QDateTime>

using namespace canbus;
using Found = HeadUnitReading::Found;

namespace {

quint8 byteOf(const QByteArray &bytes)
{
    return bytes.isEmpty() ? quint8(0) : quint8(bytes.at(0));
}

} // namespace

WholeLink::WholeLink(ParkedHeadUnit &headUnit, Trace &trace)
    : m_headUnit(headUnit)
    , m_trace(trace)
{
    QCoreApplication::instance()->installEventFilter(this);
    headUnit.setCommandTap([this](const QByteArray &frame) {
        note("command", frame);
        m_sending.commandGiven(frame);
    });
    follow(headUnit.protocol());
    connect(headUnit.protocol()->linkHealth(), &LinkHealth::commandEnded, this,
            [this](const QByteArray &frame, LinkHealth::Fate fate, int transmissions, qint64 microseconds) {
                note("ended", frame, int(fate));
                m_sending.frameEnded(frame, fate, transmissions, microseconds);
            });
    connect(CanBusPlayer::instance(), &CanBusPlayer::canbusConnectStatus, this, [this](bool up) {
        note("connect status", {}, up ? 1 : -1);
        m_announcing.connectStatusHeard(up);
        if (whenStatusTold)
            whenStatusTold(up);
    });
}

void WholeLink::follow(CanbusProtocol *protocol)
{
    connect(protocol, &CanbusProtocol::onWritPortData, this, &WholeLink::written);
    connect(protocol, &CanbusProtocol::notifyCanbusStatus, this, [this](bool up) {
        note("status", {}, up ? 1 : -1);
        m_sending.statusTold(up);
        m_announcing.statusTold(up);
    });
    followCategory(0x02, &CanbusProtocol::notifyScreensInfo);
    followCategory(0x03, &CanbusProtocol::notifyClimateInfo);
    followCategory(0x04, &CanbusProtocol::notifyGaugesInfo);
    followCategory(0x05, &CanbusProtocol::notifyVehicleInfo);
    followCategory(0x06, &CanbusProtocol::notifyParingAssistInfo);
    followCategory(0x07, &CanbusProtocol::notifyScreensTransition);
    followCategory(0x11, &CanbusProtocol::notifyTextScreen);
}

void WholeLink::followCategory(quint8 tp, void (CanbusProtocol::*signal)(QByteArray))
{
    connect(m_headUnit.protocol(), signal, this, [this, tp](const QByteArray &data) {
        note("notify", data, tp);
        m_receiving.notified({tp, 0, data});
    });
}

void WholeLink::followCategory(quint8 tp, void (CanbusProtocol::*signal)(QByteArray, QByteArray))
{
    connect(m_headUnit.protocol(), signal, this, [this, tp](const QByteArray &mod, const QByteArray &data) {
        note("notify", data, tp * 256 + byteOf(mod));
        m_receiving.notified({tp, byteOf(mod), data});
    });
}

void WholeLink::written(const QByteArray &block)
{
    note("write", block);
    m_written += block;
    counts.sentBytes += quint64(block.size());
    if (block.startsWith("\x9f\x02"))
        m_sending.frameWritten(block);
    else if (block.startsWith('\x9f'))
        m_receiving.answered(block);
    else
        m_receiving.textWritten(block);
}

void WholeLink::advanceTo(qint64 nowMs)
{
    if (nowMs == VirtualTime::now())
        return;
    VirtualTime::advance(int(nowMs - VirtualTime::now()));
    findings.setNow(nowMs);
    m_announcing.timePassed();
    settled();
}

void WholeLink::arrive(const QByteArray &block)
{
    note("arrives", block);
    CanBusReadBuff *const buffer = CanBusReadBuff::instance();
    m_receiving.arrive(block);
    Q_EMIT buffer->received(block);
    buffer->data += block;
    Q_EMIT m_headUnit.port()->read(block);
}

void WholeLink::pass()
{
    const HeadUnitReading::Pass &pass = m_receiving.passBegins();
    expectSending(pass);
    m_headUnit.protocol()->onParseDataTmrout();
    QCoreApplication::sendPostedEvents();
    m_receiving.passEnds(CanBusReadBuff::instance()->data);
    if (pass.found == Found::Data)
        m_announcing.frameTaken(byteOf(pass.tp), byteOf(pass.mod), pass.payload);
    settled();
}

/// What the sending side learns from a pass.
void WholeLink::expectSending(const HeadUnitReading::Pass &pass)
{
    if (pass.found == Found::Ack || pass.found == Found::Nack)
        m_sending.answerRead(pass.found == Found::Ack, byteOf(pass.id));
    if (pass.found != Found::Data || byteOf(pass.tp) != 0x01)
        return;
    const quint8 readiness = byteOf(pass.payload.mid(1, 1));
    if (readiness == 1)
        m_sending.readyRead(byteOf(pass.id));
    else if (readiness == 0)
        m_sending.notReadyRead();
}

void WholeLink::settled()
{
    m_sending.settled();
    m_receiving.settled();
    m_announcing.settled();
}

bool WholeLink::eventFilter(QObject *receiver, QEvent *event)
{
    if (event->type() != QEvent::Timer)
        return false;
    findings.setNow(VirtualTime::now());
    auto *const timer = qobject_cast<QTimer *>(receiver);
    if (!timer)
        return false;
    if (timer == m_headUnit.syncTimer())
        moveHostClock();
    else if (timer->interval() == 2000)
        m_sending.timerExpired(SendingRules::RequestConnect);
    else if (timer->interval() == 15000)
        m_sending.timerExpired(SendingRules::CheckConnect);
    else if (timer->interval() == 300 && !timer->isSingleShot())
        m_sending.timerExpired(SendingRules::Send);
    return false;
}

void WholeLink::moveHostClock()
{
    static const QDateTime start(QDate(2026, 11, 5), QTime(12, 34, 56));
    kddatetime::DateTimeManager::instance()->setCurrentDateTime(start.addMSecs(VirtualTime::now()));
}

void WholeLink::checkFigures()
{
    ::checkFigures(m_headUnit.protocol()->linkHealth()->figures(), counts, findings);
}

void WholeLink::note(const char *what, const QByteArray &bytes, qint64 number)
{
    m_trace.add(VirtualTime::now(), what, bytes, number);
}
