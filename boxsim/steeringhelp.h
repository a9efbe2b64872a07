#pragma once

#include <QtCore/QStringList>

namespace boxsim {

/// The words that steer() takes, besides the fields.
QStringList allSteeringCommands();

/// What `help` tells.
/// @param beginning  of names of fields, or a command; empty for an overview
/// @return the lines; none if nothing begins so, and then `error` says what there is
QStringList steeringHelp(const QString &beginning, QString *error);

} // namespace boxsim
