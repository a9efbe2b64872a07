#pragma once

#include <QtCore/QByteArray>

namespace boxsim {

/// The JSON schema (draft 4) of scenarios, made from the fields, commands and events that there are.
QByteArray scenarioSchema();

} // namespace boxsim
