#pragma once

#include "outcome.h"
#include "valuetext.h"

#include <QtCore/QString>
#include <QtCore/QStringList>

#include <optional>

namespace canbus::monitor {

/// What the command line asked for.
struct Options {
    QString port = QStringLiteral("/dev/ttyS3");
    int baudRate = 57600;
    Form form = Form::Text;
    std::optional<int> durationMs; ///< without it the monitor runs until it is told to end
    QStringList calls;             ///< as they were written, the one that shows a screen first
    QString recordFile;            ///< empty: nothing is recorded
    QString readFile;              ///< empty: a port is opened
    bool wantsStats = false;
    bool isVerbose = false;
    bool wantsHelp = false;
    bool wantsVersion = false;
};

/// @param arguments  the program's name first
Outcome<Options> parseOptions(const QStringList &arguments);

QString helpText();

} // namespace canbus::monitor
