#pragma once

#include <QtCore/QStringList>

#include <linkhealth.h>

namespace canbus::monitor {

/// What the figures of a link point to, where they have a usual cause: a line each. None for a sound link,
/// however short its run was.
QStringList hintsFor(const LinkFigures &figures);

/// Writes the hints to standard error.
void complainOf(const LinkFigures &figures);

} // namespace canbus::monitor
