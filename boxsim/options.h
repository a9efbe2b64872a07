#pragma once

#include "boxsim/bench/instruction.h"
#include "boxsim/line/faults.h"
#include "boxsim/line/times.h"

#include <QtCore/QString>
#include <QtCore/QStringList>

#include <optional>

namespace boxsim {

/// What canbus-boxsim was asked to do.
struct Options {
    enum class Task {
        Run,
        Check,       ///< reads the scenario and does nothing else
        PrintSchema, ///< of scenarios
        ShowHelp,
        ShowVersion,
    };

    Task task = Task::Run;
    QString helpText; ///< for ShowHelp
    QString ptyLink;  ///< path of the link to make, or empty
    QString port;     ///< serial device, or empty
    int baudRate = 57600;
    bool json = false;
    QString scenario; ///< file, or empty
    QString replay;   ///< file, or empty; without both the built-in drive is played
    double speed = 1; ///< of the scenario's or the recording's time
    bool loop = false;
    std::optional<quint32> seed;
    Faults faults;
    qint64 silentAfterMs = kNever;
    qint64 restartAfterMs = kNever;
    qint64 hangUpAfterMs = kNever;
    int hangUpForMs = kUsualHangUpMs;
};

/// Reads the command line.
/// @param arguments  as the program got them, its own name first
/// @param error  set to one line that says what is wrong and what would be right
/// @return whether they make sense
bool parseOptions(const QStringList &arguments, Options *options, QString *error);

} // namespace boxsim
