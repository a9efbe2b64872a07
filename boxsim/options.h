#pragma once

#include "boxsim/box.h"

#include <QtCore/QString>
#include <QtCore/QStringList>

namespace boxsim {

/// What canbus-boxsim was asked to do.
struct Options {
    enum class Task { Run, ShowHelp, ShowVersion };

    Task task = Task::Run;
    QString helpText; ///< for ShowHelp
    QString ptyLink;  ///< path of the link to make, or empty
    QString port;     ///< serial device, or empty
    int baudRate = 57600;
    bool split = false; ///< each byte is a write of its own
    bool json = false;
    qint64 silentAfterMs = kNever;
    Faults faults;
};

/// Reads the command line.
/// @param arguments  as the program got them, its own name first
/// @param error  set to one line that says what is wrong and what would be right
/// @return whether they make sense
bool parseOptions(const QStringList &arguments, Options *options, QString *error);

} // namespace boxsim
