#pragma once

#include <QtCore/QByteArray>
#include <QtCore/QString>

namespace canbus {

/// Reads a regular file as a whole, and never waits: a pipe, which nobody may be writing to, is refused.
/// @param most  so many bytes at most are read; one more than somebody wants tells that there are too many
/// @param reason  set to why it could not be read
/// @return whether it was read
bool readRegularFile(const QString &path, qint64 most, QByteArray *content, QString *reason);

} // namespace canbus
