#pragma once

#include "boxsim/bench/script.h"
#include "boxsim/line/faultyline.h"
#include "boxsim/link/box.h"

#include <memory>

namespace boxsim {

/// What a bench is like when it begins.
struct BenchOptions {
    BoxOptions box;         ///< its seed is that of the whole bench
    bool tellsSeed = false; ///< reports the seed as soon as something is drawn from it
    double speed = 1;       ///< above 1 the script's time runs faster than the bench's
    Faults faults;
    qint64 silentAfterMs = kNever;    ///< from then on the box is silent
    qint64 restartAfterMs = kNever;   ///< the box is switched off and on then
    qint64 hangUpAfterMs = kNever;    ///< the line is gone then
    int hangUpForMs = kUsualHangUpMs; ///< for so long
};

/// Something to do with the line.
struct LineStep {
    enum class Kind { Write, HangUp, Return };

    Kind kind = Kind::Write;
    QByteArray bytes; ///< of Write
};

/// What a call of the bench brought about, in order.
struct BenchOutput {
    QVector<LineStep> line;
    QVector<Event> events;
};

/// How a run has ended.
enum class Ending { None, Success, Failure };

/// A box, the faulty way to its line, and the script that leads both. Pure: bytes and times in, bytes and
/// events out. Times are milliseconds since the bench began and never run backwards. The same seed, script,
/// bytes and times give the same run.
///
/// - A silent box sends nothing that a script gives it, either.
/// - While the line is hung up, what is written and what comes is lost; the box does not know.
/// - What the script and the line report reaches the script like what the box reports.
/// - After the end nothing happens any more.
class Bench {
public:
    /// @param script  what leads it, or null
    explicit Bench(const BenchOptions &options = {}, std::unique_ptr<Script> script = {});

    /// Takes bytes from the line, cut anywhere.
    BenchOutput receive(const QByteArray &bytes, qint64 nowMs);

    /// Lets time pass.
    BenchOutput advance(qint64 nowMs);

    /// When advance() will have something to do, or kNever.
    qint64 dueMs() const;

    const BenchState &state() const { return m_box.state(); }

    /// Carries out an instruction from outside the script, and what follows from it.
    BenchOutput carryOut(const Instruction &instruction, qint64 nowMs);

    bool isLinkUp() const { return m_box.isLinkUp(); }

    Ending ending() const { return m_ending; }

    /// Why it ended with a failure.
    QString failure() const { return m_failure; }

private:
    BenchOutput settle();
    qint64 scriptMs(qint64 nowMs) const;
    qint64 scriptDueMs() const;
    bool comesDue(qint64 *whenMs) const;
    void doWhatIsDue();
    void fallSilent();
    void bringLineBack();
    void followScript();
    void perform(const Instruction &instruction);
    void set(const QVector<Assignment> &assignments);
    void takeState(const BenchState &state);
    void take(const Output &output);
    void sendForScript(const QByteArray &bytes, bool isFrame, int id);
    void hangUp(int ms);
    void end(Ending ending, const QString &failure = {});
    void releaseHeld();
    void releaseLine();
    void tellLineFaults();
    void tellSeed();
    void tell(Event::Kind kind, const QString &reason = {}, const QByteArray &bytes = {}, int id = kNoId);
    void tell(const Event &event);

    BenchOptions m_options;
    std::unique_ptr<Script> m_script;
    Box m_box;
    FaultyLine m_line;
    QVector<QByteArray> m_held; ///< what the box writes while the script is inside a frame
    bool m_hungUp = false;
    qint64 m_returnMs = kNever;
    Ending m_ending = Ending::None;
    QString m_failure;
    qint64 m_nowMs = 0;
    BenchOutput m_output;
};

} // namespace boxsim
