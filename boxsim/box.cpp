#include "box.h"

#include "boxsim/climatebuttons.h"
#include "boxsim/drive.h"
#include "boxsim/menu.h"
#include "boxsim/otherbuttons.h"

#include "frameformat.h"
#include "wireconstants.h"

#include <utility>

namespace boxsim {

namespace {

using canbus::Category;

/// The head unit sends a frame at 0, 300 and 600 ms and gives it up at 900 ms.
constexpr qint64 kRepetitionWindowMs = 900;

/// The head unit removes escaping from answers as well, so that an answer with a plain 9F as its id would not
/// be understood.
QByteArray acknowledgement(quint8 id)
{
    QByteArray escaped;
    canbus::frame::appendEscaped(escaped, id);
    return canbus::frame::buildAnswer(canbus::frame::kAck, escaped);
}

QByteArray versionPayload(bool ready)
{
    const quint8 state = ready ? canbus::kBoxReady : canbus::kBoxNotReady;
    return QByteArray(1, char(0)) + QByteArray(1, char(state));
}

bool keepsLink(Action action)
{
    return action == Action::ConnectRequest || action == Action::ConnectionCheck;
}

qint64 earlier(qint64 a, qint64 b)
{
    if (a == kNever || b == kNever)
        return qMax(a, b);
    return qMin(a, b);
}

} // namespace

Box::Box(const BoxOptions &options)
    : m_options(options)
    , m_notReadyLeft(options.notReadyReplies)
{
    if (m_options.drive)
        m_car = driveAt(0);
}

Output Box::receive(const QByteArray &bytes, qint64 nowMs)
{
    m_nowMs = nowMs;
    fallSilentWhenDue();
    followDrive();
    const QVector<WireFrame> frames = m_reader.feed(bytes);
    for (const WireFrame &frame : frames)
        take(frame);
    send();
    return std::exchange(m_output, {});
}

Output Box::advance(qint64 nowMs)
{
    return receive({}, nowMs);
}

qint64 Box::dueMs() const
{
    if (m_silent)
        return kNever;
    const qint64 nextStep = (m_driveMs / kDriveStepMs + 1) * kDriveStepMs;
    const qint64 drive = m_options.drive ? nextStep : kNever;
    return earlier(earlier(m_sender.dueMs(), drive), m_options.silentAfterMs);
}

void Box::setCar(const CarState &car)
{
    const CarState before = std::exchange(m_car, car);
    if (!m_linkUp)
        return;
    const QVector<CategoryFrame> was = framesOf(before);
    const QVector<CategoryFrame> is = framesOf(m_car);
    for (int i = 0; i < is.size(); ++i) {
        if (is.at(i).payload != was.at(i).payload)
            m_sender.post(is.at(i).tp, is.at(i).mod, is.at(i).payload);
    }
    if (m_car.transition != before.transition && m_car.transition != kNoTransition)
        m_sender.post(quint8(Category::ScreensTransition), 0, transitionPayload(quint8(m_car.transition)));
}

void Box::take(const WireFrame &frame)
{
    switch (frame.kind) {
    case WireFrame::Kind::Data:
        return takeCommand(frame);
    case WireFrame::Kind::Ack:
        return takeAck(frame);
    case WireFrame::Kind::Nack:
        return report(Event::Kind::Nack, frame.id, frame.bytes);
    case WireFrame::Kind::Bad:
        return report(Event::Kind::BadFrame, frame.id, frame.bytes, frame.reason);
    }
}

void Box::takeCommand(const WireFrame &frame)
{
    const DecodedCommand command = decodeCommand(frame);
    const bool repeated = isRepetition(frame);
    report(Event::Kind::Command, frame.id, frame.bytes);
    Event &event = m_output.events.last();
    event.command = command;
    event.repeated = repeated;
    event.acknowledged = !m_silent;
    event.category = categoryOfId(frame.id);
    if (m_silent)
        return;
    m_output.writes.append(acknowledgement(quint8(frame.id)));
    if (!repeated || keepsLink(command.action))
        carryOut(command.action, frame.data);
}

void Box::takeAck(const WireFrame &frame)
{
    const bool expected = m_sender.acknowledge(frame.id);
    report(Event::Kind::Ack, frame.id, frame.bytes,
           expected ? QString() : QStringLiteral("no frame with this id is under way"));
}

bool Box::isRepetition(const WireFrame &frame)
{
    const bool same = frame.bytes == m_lastFrame && m_nowMs - m_lastFrameMs < kRepetitionWindowMs;
    m_lastFrame = frame.bytes;
    m_lastFrameMs = m_nowMs;
    return same;
}

void Box::carryOut(Action action, const QByteArray &data)
{
    switch (action) {
    case Action::None:
        return;
    case Action::ConnectRequest:
        return answerConnectRequest();
    case Action::ConnectionCheck:
        return setLinkUp(true);
    case Action::ClimateRequest:
        return post(int(Category::Climate));
    case Action::GaugesRequest:
        return post(int(Category::Gauges));
    case Action::VehicleRequest:
        return post(int(Category::Vehicle));
    case Action::ParkingRequest:
        return post(int(Category::ParkingAssist));
    case Action::ClimateButton:
    case Action::GaugesButton:
    case Action::VehicleButton:
    case Action::ParkingButton:
    case Action::MenuPress:
        return press(action, data);
    }
}

void Box::press(Action action, const QByteArray &data)
{
    const quint8 button = quint8(data.at(0));
    const quint8 second = quint8(data.at(1));
    const quint8 third = quint8(data.size() > 2 ? data.at(2) : 0);
    const bool down = second != 0;
    CarState car = m_car;
    switch (action) {
    case Action::ClimateButton:
        pressClimateButton(car.climate, button, down, third);
        return answerButton(car, quint8(Category::Climate), ClimateDataSelector);
    case Action::GaugesButton:
        pressGauges(car.gauges, button, down);
        return answerButton(car, quint8(Category::Gauges), GaugesDataSelector);
    case Action::VehicleButton:
        pressVehicleButton(car.vehicle, button, down);
        return answerButton(car, quint8(Category::Vehicle), VehicleDataSelector);
    case Action::ParkingButton:
        pressParkingButton(car.parking, button, down);
        return answerButton(car, quint8(Category::ParkingAssist), ParkingDataSelector);
    case Action::MenuPress:
        pressMenu(car.textScreen, button, second, third);
        return answerButton(car, quint8(Category::TextScreen), 0);
    default:
        return;
    }
}

void Box::answerButton(const CarState &car, quint8 category, quint8 selector)
{
    setCar(car);
    // Also when nothing changed: the reply's new id sets the next press apart from a retransmission.
    post(category, selector);
}

/// A turned gauge takes its values from where the drive is; without one, from its beginning.
void Box::pressGauges(GaugesState &gauges, quint8 button, bool press)
{
    const GaugeFaces before = m_turned;
    pressGaugesButton(gauges, m_turned, button, press);
    if (m_turned != before)
        applyChanges(gauges, driveAt(m_driveMs, before).gauges, driveAt(m_driveMs, m_turned).gauges);
}

void Box::answerConnectRequest()
{
    setLinkUp(false);
    m_sender.clear();
    const bool ready = m_notReadyLeft == 0;
    if (!ready)
        --m_notReadyLeft;
    m_sender.post(quint8(Category::Version), 0, versionPayload(ready));
}

void Box::setLinkUp(bool up)
{
    if (m_linkUp == up)
        return;
    m_linkUp = up;
    report(up ? Event::Kind::LinkUp : Event::Kind::LinkDown);
    if (up)
        post();
}

void Box::post(int category, int selector)
{
    if (!m_linkUp)
        return;
    const QVector<CategoryFrame> frames = framesOf(m_car);
    for (const CategoryFrame &frame : frames) {
        if ((category == kAny || category == frame.tp) && (selector == kAny || selector == frame.mod))
            m_sender.post(frame.tp, frame.mod, frame.payload);
    }
}

void Box::followDrive()
{
    if (!m_options.drive || m_nowMs / kDriveStepMs == m_driveMs / kDriveStepMs)
        return;
    CarState car = m_car;
    applyChanges(car, driveAt(m_driveMs, m_turned), driveAt(m_nowMs, m_turned));
    m_driveMs = m_nowMs;
    setCar(car);
}

void Box::fallSilentWhenDue()
{
    if (m_silent || m_options.silentAfterMs == kNever || m_nowMs < m_options.silentAfterMs)
        return;
    m_silent = true;
    report(Event::Kind::Silent);
}

void Box::send()
{
    if (m_silent)
        return;
    const Sender::Step step = m_sender.poll(m_nowMs);
    if (step.kind == Sender::Step::Kind::Nothing)
        return;
    if (step.kind == Sender::Step::Kind::Resent)
        report(Event::Kind::Resend, step.id, step.bytes);
    if (step.kind != Sender::Step::Kind::GaveUp)
        return m_output.writes.append(step.bytes);
    report(Event::Kind::GiveUp, step.id, step.bytes);
    m_sender.clear();
    setLinkUp(false);
}

void Box::report(Event::Kind kind, int id, const QByteArray &bytes, const QString &reason)
{
    Event event;
    event.kind = kind;
    event.timeMs = m_nowMs;
    event.id = id;
    event.bytes = bytes;
    event.reason = reason;
    m_output.events.append(event);
}

} // namespace boxsim
