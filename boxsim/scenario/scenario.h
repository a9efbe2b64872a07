#pragma once

#include "boxsim/bench/instruction.h"
#include "boxsim/link/box.h"

#include <QtCore/QPoint>
#include <QtCore/QString>
#include <QtCore/QVector>

#include <vector>

namespace boxsim {

/// What a step can wait for. One of the three is set.
struct Condition {
    enum class Kind {
        Command,  ///< the head unit sends this command, and not as a retransmission
        Event,    ///< the box reports this
        LinkUp,   ///< the link is up, or comes up
        LinkDown, ///< the link is down, or goes down
    };

    Kind kind = Kind::Event;
    QString name;                ///< of the command or the event
    QVector<Argument> arguments; ///< what the command carries at least
};

/// One field that moves along points; between two of them it moves evenly.
struct Curve {
    Assignment assignment;  ///< the field and its entry; the value is filled in
    QVector<QPoint> points; ///< x: milliseconds since the step began, rising; y: the value
};

/// The value of a curve at a moment, between two points rounded towards the earlier one.
/// @param ms  not before the first point; behind the last one its value stays
int valueAt(const Curve &curve, int ms);

struct Step;

/// What goes on when a condition is met.
struct Option {
    Condition condition;
    std::vector<Step> steps;
};

/// One step of a scenario. See docs/scenarios.md for what each kind does.
struct Step {
    enum class Kind {
        Pause,  ///< nothing but the time that the step says
        Do,     ///< `instruction`
        Ramp,   ///< `curves`, a value each at every `everyMs`
        Wait,   ///< until one of `options` holds, or `timeoutMs` has passed
        Repeat, ///< `steps`, so many `times`
    };

    static constexpr int kForEver = 0;

    Kind kind = Kind::Pause;
    qint64 atMs = kNever; ///< since the list of steps began; kNever: `afterMs` counts
    qint64 afterMs = 0;   ///< since the end of the step before
    Instruction instruction;
    int everyMs = 0;
    QVector<Curve> curves;
    std::vector<Option> options;
    qint64 timeoutMs = kNever;
    std::vector<Step> otherwise; ///< what goes on when the time has passed
    std::vector<Step> steps;
    int times = 1;
};

/// A run of the bench, as a file describes it.
struct Scenario {
    QString about;
    bool hasSeed = false;
    quint32 seed = 0;          ///< of all chance; meaningful with hasSeed
    QVector<Assignment> start; ///< what holds when the run begins
    bool loop = false;         ///< the steps begin again when they have ended
    std::vector<Step> steps;
};

/// Reads a scenario from JSON.
/// @param name  how the file is called in an error
/// @param error  set to one line that names file, line and field of the first mistake, and what would be
/// right:
///   `drive.json:12: steps[3].set: climate.mainTemp takes a whole number from 0 to 65535, not "warm"`
/// @return whether it is a scenario; `scenario` is untouched if not
bool readScenario(const QByteArray &json, const QString &name, Scenario *scenario, QString *error);

/// Reads a scenario from a file of at most 1 MiB.
bool loadScenario(const QString &path, Scenario *scenario, QString *error);

} // namespace boxsim
