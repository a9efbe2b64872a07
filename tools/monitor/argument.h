#pragma once

#include "outcome.h"

#include <QtCore/QString>
#include <QtCore/QStringList>
#include <QtCore/QVariant>

namespace canbus::monitor {

/// Takes "1,2,3" apart at its commas. A comma in double quotes or in brackets separates nothing; blanks
/// around an argument are dropped. An empty text is one empty argument.
Outcome<QStringList> splitArguments(const QString &text);

/// Turns what was written into a value of the type:
///   flags: true, false, 1, 0; integers: decimal or 0x..; char: a number from -128 to 255, one byte;
///   texts: as they are, or in double quotes with \" and \\ inside; bytes: hexadecimal digits, two a byte;
///   lists of integers, flags and texts: [1,2,3].
/// @param type  of QMetaType
Outcome<QVariant> toArgument(const QString &text, int type);

} // namespace canbus::monitor
