#include "box.h"

#include "boxsim/car/climatebuttons.h"
#include "boxsim/car/menu.h"
#include "boxsim/car/otherbuttons.h"

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
QByteArray answerFrame(quint8 kind, quint8 id)
{
    QByteArray escaped;
    canbus::frame::appendEscaped(escaped, id);
    return canbus::frame::buildAnswer(kind, escaped);
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

} // namespace

Box::Box(const BoxOptions &options, const BenchState &state)
    : m_options(options)
    , m_state(state)
    , m_random(options.seed, Random::Stream::Answers)
{
}

Output Box::receive(const QByteArray &bytes, qint64 nowMs)
{
    m_nowMs = nowMs;
    followSilence();
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
    return m_silent ? kNever : m_sender.dueMs();
}

void Box::setState(const BenchState &state)
{
    const BenchState before = m_state;
    m_state = state;
    if (state.ready != before.ready && m_hasHeard && m_options.saysReady)
        postVersion(state.ready);
    if (m_linkUp && m_options.reportsState)
        postChanges(before.car);
}

void Box::postChanges(const CarState &before)
{
    const CarState &car = m_state.car;
    const QVector<CategoryFrame> was = framesOf(before);
    const QVector<CategoryFrame> is = framesOf(car);
    for (int i = 0; i < is.size(); ++i) {
        if (is.at(i).payload != was.at(i).payload)
            m_sender.post(is.at(i).tp, is.at(i).mod, is.at(i).payload);
    }
    if (car.transition != before.transition && car.transition != kNoTransition)
        m_sender.post(quint8(Category::ScreensTransition), 0, transitionPayload(quint8(car.transition)));
}

void Box::setCar(const CarState &car)
{
    BenchState state = m_state;
    state.car = car;
    setState(state);
}

Output Box::restart(qint64 nowMs)
{
    m_nowMs = nowMs;
    report(Event::Kind::Restart);
    beginAnew();
    m_reader = WireReader();
    m_lastFrame.clear();
    postVersion(m_state.ready);
    return advance(nowMs);
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
    m_hasHeard = true;
    report(Event::Kind::Command, frame.id, frame.bytes);
    const int at = m_output.events.size() - 1;
    m_output.events[at].command = command;
    m_output.events[at].repeated = repeated;
    m_output.events[at].category = categoryOfId(frame.id);
    if (m_silent)
        return hearInSilence(command.action);
    // It may add events of its own.
    const bool acknowledged = answer(quint8(frame.id));
    m_output.events[at].acknowledged = acknowledged;
    if (!repeated || keepsLink(command.action))
        carryOut(command.action, frame.data);
}

void Box::hearInSilence(Action action)
{
    if (action == Action::ConnectRequest)
        beginAnew();
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

/// @return whether the answer acknowledges the frame
bool Box::answer(quint8 id)
{
    Faults &faults = m_state.faults;
    const bool isFirst = faults.dropFirstAnswers > 0;
    if (isFirst)
        --faults.dropFirstAnswers;
    if (isFirst || m_random.happens(faults.dropAnswers)) {
        report(Event::Kind::Fault, id, {}, QStringLiteral("answer dropped"));
        return false;
    }
    const bool isNegative = m_random.happens(faults.nackAnswers);
    const bool isWrong = m_random.happens(faults.wrongIds);
    const quint8 sentId = isWrong ? quint8(id ^ (1 + m_random.below(255))) : id;
    const QByteArray frame = answerFrame(isNegative ? canbus::frame::kNack : canbus::frame::kAck, sentId);
    m_output.writes.append(frame);
    if (isNegative)
        report(Event::Kind::Fault, id, frame, QStringLiteral("negative answer"));
    if (isWrong)
        report(Event::Kind::Fault, id, frame, QStringLiteral("answer with another id"));
    return !isNegative && !isWrong;
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
    CarState car = m_state.car;
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

/// A turned gauge takes its values from what the car measures.
void Box::pressGauges(GaugesState &gauges, quint8 button, bool press)
{
    const GaugeFaces before = m_state.faces;
    pressGaugesButton(gauges, m_state.faces, button, press);
    if (m_state.faces == before)
        return;
    applyChanges(gauges, gaugesShowing(m_state.measured, before),
                 gaugesShowing(m_state.measured, m_state.faces));
}

/// The head unit has forgotten the link, or the box itself.
void Box::beginAnew()
{
    setLinkUp(false);
    m_sender.clear();
}

void Box::answerConnectRequest()
{
    beginAnew();
    if (!m_options.saysReady)
        return;
    int &notReady = m_state.faults.notReadyReplies;
    const bool isDelayed = notReady > 0;
    if (isDelayed)
        --notReady;
    postVersion(m_state.ready && !isDelayed);
}

void Box::postVersion(bool ready)
{
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
    if (!m_linkUp || !m_options.reportsState)
        return;
    const QVector<CategoryFrame> frames = framesOf(m_state.car);
    for (const CategoryFrame &frame : frames) {
        if ((category == kAny || category == frame.tp) && (selector == kAny || selector == frame.mod))
            m_sender.post(frame.tp, frame.mod, frame.payload);
    }
}

void Box::followSilence()
{
    if (m_silent == m_state.faults.silence)
        return;
    m_silent = m_state.faults.silence;
    // What was heard in the silence was not carried out: when it comes again, it is no repetition.
    m_lastFrame.clear();
    report(m_silent ? Event::Kind::Silent : Event::Kind::Speaking);
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
    beginAnew();
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
