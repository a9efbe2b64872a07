#pragma once

#include <QtCore/QString>
#include <QtCore/QStringList>

namespace canbus {

/// The candidates that somebody who wrote `name` may have meant: those that contain it or differ from it by
/// a few letters, whatever their case.
QStringList similarNames(const QString &name, const QStringList &candidates);

/// The candidate among these that differs least, the first of several; empty if there is none.
QString mostSimilarName(const QString &name, const QStringList &candidates);

} // namespace canbus
