#pragma once

#include <QtCore/QString>
#include <QtCore/QVariant>

namespace canbus::monitor {

/// How lines are written: for people and simple scripts, or as JSON.
enum class Form { Text, Json };

/// The text in double quotes, with what is no plain character escaped: it stays on one line, cannot control
/// a terminal, and is a JSON string.
QString quoted(const QString &text);

/// One value: numbers and flags as they are, texts quoted, lists in brackets, maps in braces, bytes as
/// hexadecimal digits and values of enumerations by name (quoted in JSON). A value of another type is its
/// type's name in quoted angle brackets.
QString valueText(const QVariant &value, Form form);

} // namespace canbus::monitor
