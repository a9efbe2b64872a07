#include "similarnames.h"

#include <QtCore/QVector>

#include <algorithm>
#include <numeric>

namespace canbus {

namespace {

/// How many letters must be put in, left out or exchanged to make one text of the other.
int editDistance(const QString &from, const QString &to)
{
    QVector<int> row(to.size() + 1);
    std::iota(row.begin(), row.end(), 0);
    for (int i = 0; i < from.size(); ++i) {
        int diagonal = row[0];
        row[0] = i + 1;
        for (int j = 0; j < to.size(); ++j) {
            const int exchanged = diagonal + (from[i] == to[j] ? 0 : 1);
            diagonal = row[j + 1];
            row[j + 1] = std::min({exchanged, row[j] + 1, diagonal + 1});
        }
    }
    return row.last();
}

bool isNear(const QString &name, const QString &candidate)
{
    const QString written = name.toLower();
    const QString meant = candidate.toLower();
    return meant.contains(written) || editDistance(written, meant) <= 1 + written.size() / 4;
}

} // namespace

QStringList similarNames(const QString &name, const QStringList &candidates)
{
    QStringList near;
    for (const QString &candidate : candidates) {
        if (isNear(name, candidate))
            near << candidate;
    }
    return near;
}

QString mostSimilarName(const QString &name, const QStringList &candidates)
{
    const QStringList near = similarNames(name, candidates);
    const auto isNearer = [&name](const QString &a, const QString &b) {
        return editDistance(name.toLower(), a.toLower()) < editDistance(name.toLower(), b.toLower());
    };
    return near.isEmpty() ? QString() : *std::min_element(near.begin(), near.end(), isNearer);
}

QString didYouMean(const QString &name, const QStringList &candidates, const QString &otherwise,
                   const QString &before)
{
    const QString similar = mostSimilarName(name, candidates);
    return similar.isEmpty() ? otherwise : QStringLiteral("did you mean %1%2?").arg(before, similar);
}

} // namespace canbus
