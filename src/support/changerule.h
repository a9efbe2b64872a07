#pragma once

#include <QtCore/QList>

#include <algorithm>
#include <array>
#include <utility>

/// The rule by which a received item counts as news. Pure functions.
namespace canbus {

/// Stores `next` when it differs from what is stored. @return whether it did
template <class T>
bool replaceIfChanged(T &stored, T next)
{
    if (stored == next)
        return false;
    stored = std::move(next);
    return true;
}

/// As above, for two items that are announced together: both are stored when either differs.
template <class T>
bool replaceIfChanged(T &storedFirst, T nextFirst, T &storedSecond, T nextSecond)
{
    const bool firstChanged = replaceIfChanged(storedFirst, std::move(nextFirst));
    const bool secondChanged = replaceIfChanged(storedSecond, std::move(nextSecond));
    return firstChanged || secondChanged;
}

/// As above, for a list whose number of items is fixed, and at least one. A list is made only when it is
/// news.
template <class T, std::size_t Size>
bool replaceIfChanged(QList<T> &stored, const std::array<T, Size> &next)
{
    static_assert(Size > 0);
    if (std::equal(next.begin(), next.end(), stored.cbegin(), stored.cend()))
        return false;
    stored = QList<T>(next.begin(), next.end());
    return true;
}

/// As replaceIfChanged(), for lists and texts of which an empty one is announced each time it arrives:
/// equal items count as unchanged only when there is something in them.
template <class T>
bool replaceIfChangedOrEmpty(T &stored, T next)
{
    if (stored == next && !stored.isEmpty())
        return false;
    stored = std::move(next);
    return true;
}

} // namespace canbus
