#pragma once

#include <QtCore/QList>
#include <QtCore/QString>

class QQmlError;

namespace canbus::headunit {

/// One line on standard error.
void complain(const QString &text);

/// From now on what Qt and the library have to say goes to standard error, if it is a warning or worse and
/// not the library's everyday log. A display that cannot be opened ends the program with one line that says
/// what to do.
void takeMessages();

/// Whether this process has been told of a display at all.
bool hasDisplay();

/// What is shown when there is no display.
QString noDisplayText();

/// What is wrong when the screens do not load, as one line. A QML module that is missing is named with what
/// brings it.
QString loadError(const QList<QQmlError> &errors);

} // namespace canbus::headunit
