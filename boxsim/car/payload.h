#pragma once

#include <QtCore/QByteArray>
#include <QtCore/QString>
#include <QtCore/QStringList>

#include <array>
#include <cstddef>
#include <tuple>
#include <utility>

/// What the payloads of all categories are made of.
namespace boxsim {

/// Puts four 2-bit states into a byte, the first into the highest bits.
quint8 pairs(quint8 bits76, quint8 bits54, quint8 bits32, quint8 bits10);

/// Puts two 4-bit states into a byte.
quint8 nibbles(quint8 high, quint8 low);

/// A byte with one bit set, or none.
quint8 flag(bool on, int bit);

/// The flags in a byte, the first in bit `firstBit`.
template <std::size_t N>
quint8 flags(const std::array<bool, N> &on, int firstBit = 0)
{
    quint32 byte = 0;
    for (std::size_t i = 0; i < N; ++i)
        byte |= flag(on[i], firstBit + int(i));
    return quint8(byte);
}

void append(QByteArray &payload, quint8 byte);

template <std::size_t N>
void append(QByteArray &payload, const std::array<quint8, N> &bytes)
{
    for (const quint8 byte : bytes)
        append(payload, byte);
}

/// Appends a text in UTF-8, closed by a zero. The text has no zero of its own.
void appendText(QByteArray &payload, const QString &text);

/// Appends each text in UTF-8, closed by a zero.
void appendTexts(QByteArray &payload, const QStringList &texts);

/// A payload that is nothing but texts, each in UTF-8 and closed by a zero.
QByteArray textsPayload(const QStringList &texts);

template <class T>
void applyChange(T &item, const T &before, const T &after)
{
    if (!(before == after))
        item = after;
}

/// An array changes entry by entry.
template <class T, std::size_t N>
void applyChange(std::array<T, N> &item, const std::array<T, N> &before, const std::array<T, N> &after)
{
    for (std::size_t i = 0; i < N; ++i)
        applyChange(item[i], before[i], after[i]);
}

/// Takes over into `state` the items that differ between `before` and `after`, and leaves the others. Each
/// is the std::tie() of a state's items.
template <class Items, class ConstItems, std::size_t... I>
void applyItems(Items state, const ConstItems &before, const ConstItems &after, std::index_sequence<I...>)
{
    (applyChange(std::get<I>(state), std::get<I>(before), std::get<I>(after)), ...);
}

template <class... T>
void applyItems(std::tuple<T &...> state, const std::tuple<const T &...> &before,
                const std::tuple<const T &...> &after)
{
    applyItems(state, before, after, std::index_sequence_for<T...>());
}

} // namespace boxsim
