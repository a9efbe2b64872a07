#pragma once

#include <QtCore/QByteArray>
#include <QtCore/QString>
#include <QtCore/QStringList>

/// Readers of the texts in a payload: UTF-8, ended by a zero byte. Pure functions, usable on every thread.
namespace canbus {

/// Appends the zero-terminated strings in `data`, from the byte `from` on, to `list`, each decoded as UTF-8
/// and cleaned by removeReplacementCharacters(). Bytes behind the last zero byte belong to no string and are
/// dropped.
void splitZeroTerminated(QStringList &list, const QByteArray &data, int from = 0);

/// Removes every U+FFFD, the character that stands for bytes which are no UTF-8.
void removeReplacementCharacters(QString &text);

/// The UTF-8 text that begins at byte `from` and ends before the first zero byte or with the data. Not
/// cleaned. Empty when `from` lies outside of the data.
QString textUpToZero(const QByteArray &data, int from = 0);

} // namespace canbus
