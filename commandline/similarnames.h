#pragma once

#include <QtCore/QString>
#include <QtCore/QStringList>

namespace canbus {

/// The candidates that somebody who wrote `name` may have meant: those that contain it or differ from it by
/// a few letters, whatever their case.
QStringList similarNames(const QString &name, const QStringList &candidates);

/// The candidate among these that differs least, the first of several; empty if there is none.
QString mostSimilarName(const QString &name, const QStringList &candidates);

/// What to tell somebody who wrote a name that there is not: the candidate that he may have meant, as a
/// question, or `otherwise` where there is none.
/// @param before  stands before the candidate, for example "--"
QString didYouMean(const QString &name, const QStringList &candidates, const QString &otherwise,
                   const QString &before = {});

} // namespace canbus
