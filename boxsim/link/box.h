#pragma once

#include "boxsim/fields/benchstate.h"
#include "boxsim/line/random.h"
#include "boxsim/link/commands.h"
#include "boxsim/link/sender.h"
#include "boxsim/link/wirereader.h"

#include <QtCore/QByteArray>
#include <QtCore/QVector>

namespace boxsim {

/// Something that happened, for whoever watches the box.
struct Event {
    enum class Kind {
        Command,  ///< a data frame came: `command`, `acknowledged`, `repeated`, `category`
        Ack,      ///< an acknowledgement came; `reason` is set when it was for no frame under way
        Nack,     ///< a negative acknowledgement came
        BadFrame, ///< bytes came that are no frame: `reason`
        Resend,   ///< a frame was not acknowledged in time and went out again
        GiveUp,   ///< a frame was never acknowledged
        LinkUp,   ///< the head unit has connected
        LinkDown, ///< it begins anew, or does not answer any more
        Silent,   ///< from here on the box neither answers nor sends
        Speaking, ///< the silence is over
        Restart,  ///< the box was switched off and on
        Fault,    ///< something was made wrong on purpose: `reason`, `bytes` where it is about some
        Sent,     ///< bytes went out as a script gave them
        HangUp,   ///< the line is gone
        LineBack, ///< the line is there again
        Note,     ///< a remark of a script: `reason`
        Seed,     ///< what all chance of this run comes from: `reason`
    };

    Kind kind = Kind::Command;
    qint64 timeMs = 0;
    int id = kNoId;
    DecodedCommand command;
    bool acknowledged = false; ///< the box has answered: always, unless it is silent or a fault is in the way
    bool repeated = false;     ///< the same bytes as the frame right before it: taken as a retransmission
    quint8 category = 0;       ///< whose id the command carries, as a TP byte; 0: none of the box's
    QString reason;
    QByteArray bytes; ///< as on the wire
};

/// What a call of the box brought about, in order.
struct Output {
    QVector<QByteArray> writes; ///< blocks for the line
    QVector<Event> events;
};

/// How a box behaves.
struct BoxOptions {
    quint32 seed = kDefaultSeed; ///< what the faults of its answers are drawn from
    bool reportsState = true;    ///< false: sends no state, because a recording speaks for it
    bool saysReady = true;       ///< false: acknowledges connect requests and leaves the reply to a recording
};

/// The interface box as the head unit sees it. Pure: bytes and times in, bytes and events out; no clock and
/// no I/O. Times are milliseconds since the box was switched on and never run backwards.
///
/// - A connect request is acknowledged and answered with a Version frame that says ready or not ready.
///   Whatever was still to be sent is dropped: the head unit begins anew.
/// - Before it has heard a head unit it does not report unasked whether it is ready. From there on it reports
///   each change of that, also while the link is down, and the head unit draws its conclusions.
/// - A connection check brings the link up. The box then sends its whole state, the supported screens first,
///   and from there on changes. While the link is down it sends nothing but the answer to connect requests.
/// - A request for the data of a category is answered with all its frames. A button is answered with what it
///   changed, and with the category's state in any case.
/// - Every data frame is acknowledged. A frame with the same bytes as the one right before it, within the
///   900 ms in which the head unit retransmits, is taken as a retransmission and not carried out again. A
///   button pressed twice is told from that by its id, which changes with the box's reply to the first
///   press; pressed twice before that reply, it counts once, because the wire shows no difference.
///   Connect requests and checks look the same each time and are always carried out.
/// - A frame with a wrong check byte gets no answer, so that the head unit sends it again: a negative
///   acknowledgement would make it drop the frame.
/// - A negative acknowledgement changes nothing: the head unit sends them while a frame is still arriving.
///   If the frame did not arrive, the resend interval takes care of it.
/// - A frame that is given up takes the link down until the next connection check or connect request.
/// - A silent box hears and reports, but carries nothing out and sends nothing. Its frame under way and all
///   that changes wait for the end of the silence. A connect request that it hears takes the link down.
/// - A fault of an answer is one of the answer alone: the command is carried out.
class Box {
public:
    explicit Box(const BoxOptions &options = {}, const BenchState &state = {});

    /// Takes bytes from the line, cut anywhere.
    Output receive(const QByteArray &bytes, qint64 nowMs);

    /// Lets time pass.
    Output advance(qint64 nowMs);

    /// When advance() will have something to do, or kNever.
    qint64 dueMs() const;

    bool isLinkUp() const { return m_linkUp; }

    /// Whether it is silent at present.
    bool isSilent() const { return m_silent; }

    /// The state, with what the buttons have changed and the counted faults that are left.
    const BenchState &state() const { return m_state; }

    /// Changes what the box reports and what is wrong with it. The next advance() sends what changed, and
    /// begins or ends a silence.
    void setState(const BenchState &state);

    /// Switches the box off and on: it forgets the link, what it was about to send and what it heard, and
    /// says unasked whether it is ready. It keeps its state, which is the car's.
    Output restart(qint64 nowMs);

    const CarState &car() const { return m_state.car; }

    const ClimateState &climate() const { return m_state.car.climate; }

    /// setState() for the car alone.
    void setCar(const CarState &car);

private:
    static constexpr int kAny = -1;

    void take(const WireFrame &frame);
    void takeCommand(const WireFrame &frame);
    void takeAck(const WireFrame &frame);
    bool isRepetition(const WireFrame &frame);
    void hearInSilence(Action action);
    bool answer(quint8 id);
    void carryOut(Action action, const QByteArray &data);
    void beginAnew();
    void answerConnectRequest();
    void postVersion(bool ready);
    void setLinkUp(bool up);
    void press(Action action, const QByteArray &data);
    void pressGauges(GaugesState &gauges, quint8 button, bool press);
    void answerButton(const CarState &car, quint8 category, quint8 selector);
    void postChanges(const CarState &before);
    void post(int category = kAny, int selector = kAny);
    void followSilence();
    void send();
    void report(Event::Kind kind, int id = kNoId, const QByteArray &bytes = {}, const QString &reason = {});

    BoxOptions m_options;
    WireReader m_reader;
    Sender m_sender;
    BenchState m_state;
    Random m_random;
    qint64 m_nowMs = 0;
    bool m_silent = false;
    bool m_linkUp = false;
    bool m_hasHeard = false; ///< a head unit, at any time
    QByteArray m_lastFrame;
    qint64 m_lastFrameMs = 0;
    Output m_output;
};

} // namespace boxsim
