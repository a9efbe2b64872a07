#pragma once

#include <QtCore/QSize>
#include <QtCore/QString>
#include <QtCore/QStringList>

namespace canbus::headunit {

/// The names of the pages, in the order of the rail.
QStringList pageNames();

/// What canbus-headunit was asked to do.
struct Options {
    QString port = QStringLiteral("/dev/ttyS3");
    int baudRate = 57600;
    bool simulates = false; ///< has a simulated box of its own in the place of a port
    bool hasPanel = false;  ///< and a window that plays the car
    bool parks = false;     ///< the simulated car stands, where no scenario is named
    QString scenario;       ///< file for the simulated box, or empty
    QString page = QStringLiteral("climate");
    bool isNight = false;
    QSize size {1024, 600};
    QString screenshots; ///< folder for pictures of all pages, or empty
    bool wantsHelp = false;
    bool wantsVersion = false;
};

/// Reads the command line.
/// @param arguments  as the program got them, its own name first
/// @param error  set to one line that says what is wrong and what would be right
/// @return whether they make sense
bool parseOptions(const QStringList &arguments, Options *options, QString *error);

/// What --help prints.
QString helpText();

} // namespace canbus::headunit
