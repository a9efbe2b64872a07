#pragma once

#include <QtCore/QString>

namespace canbus {

/// The text with its control characters and line separators written as escapes ("\n", "\x1b"), so that one
/// line of output stays one line. A second time it changes nothing.
QString onOneLine(const QString &text);

} // namespace canbus
