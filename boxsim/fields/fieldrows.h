#pragma once

#include "boxsim/fields/benchstate.h"

#include <array>
#include <cstddef>
#include <functional>
#include <type_traits>

/// The table behind allFields(): each field with the way to what it sets.
namespace boxsim {

struct FieldRow {
    Field field;
    std::function<QVariant(const BenchState &state, int entry)> read;
    /// @param value  one that assign() has let through
    std::function<void(BenchState &state, int entry, const QVariant &value)> write;
};

/// The most of a list of texts that has no limit of its own.
constexpr int kMostTexts = 32;

struct Range {
    double least = 0;
    double most = 0;
};

constexpr Range kTwoBits {0, 3};
constexpr Range kFourBits {0, 8};
constexpr Range kByte {0, 255};
constexpr Range kTwoBytes {0, 65535};

template <class T>
struct ItemTraits {
    using Entry = T;
    static constexpr int kCount = 1;
};

template <class T, std::size_t N>
struct ItemTraits<std::array<T, N>> {
    using Entry = T;
    static constexpr int kCount = int(N);
};

template <class T>
constexpr FieldKind kindOf()
{
    if (std::is_same_v<T, bool>)
        return FieldKind::Flag;
    if (std::is_same_v<T, double>)
        return FieldKind::Share;
    if (std::is_same_v<T, QString>)
        return FieldKind::Text;
    return std::is_same_v<T, QStringList> ? FieldKind::Texts : FieldKind::Number;
}

template <class T>
QVariant toVariant(const T &item)
{
    if constexpr (kindOf<T>() == FieldKind::Number)
        return int(item);
    else
        return item;
}

template <class T>
void fromVariant(T &item, const QVariant &value)
{
    if constexpr (kindOf<T>() == FieldKind::Number)
        item = T(value.toInt());
    else
        item = value.value<T>();
}

template <class T>
QVariant readItem(const T &item, int entry)
{
    if constexpr (ItemTraits<T>::kCount == 1)
        return toVariant(item);
    else if (entry >= 0)
        return toVariant(item[std::size_t(entry)]);
    else {
        QVariantList list;
        for (const auto &one : item)
            list.append(toVariant(one));
        return list;
    }
}

template <class T>
void writeItem(T &item, int entry, const QVariant &value)
{
    if constexpr (ItemTraits<T>::kCount == 1)
        fromVariant(item, value);
    else if (entry >= 0)
        fromVariant(item[std::size_t(entry)], value);
    else {
        const QVariantList list = value.toList();
        for (int i = 0; i < list.size(); ++i)
            fromVariant(item[std::size_t(i)], list.at(i));
    }
}

/// Builds the rows of one object, whose items are members of `State`.
template <class State>
class FieldRows {
public:
    /// @param where  finds the object's state in a BenchState, constant or not
    template <class Where>
    FieldRows(const char *object, Where where)
        : m_prefix(QLatin1String(object) + QLatin1Char('.'))
        , m_toRead(where)
        , m_toWrite(where)
    {
    }

    template <class T>
    FieldRows &add(const char *item, T State::*member, const char *about, Range range = {})
    {
        m_rows.append({described<T>(item, about, range),
                       [where = m_toRead, member](const BenchState &state, int entry) {
                           return readItem(where(state).*member, entry);
                       },
                       [where = m_toWrite, member](BenchState &state, int entry, const QVariant &value) {
                           writeItem(where(state).*member, entry, value);
                       }});
        return *this;
    }

    /// Gives the flag that was added last its own words.
    FieldRows &words(const char *no, const char *yes)
    {
        m_rows.last().field.words = QStringList {QLatin1String(no), QLatin1String(yes)};
        return *this;
    }

    const QVector<FieldRow> &rows() const { return m_rows; }

private:
    template <class T>
    Field described(const char *item, const char *about, Range range) const
    {
        using Entry = typename ItemTraits<T>::Entry;
        Field field;
        field.name = m_prefix + QLatin1String(item);
        field.kind = kindOf<Entry>();
        field.count = ItemTraits<T>::kCount;
        field.about = QString::fromUtf8(about);
        field.least = range.least;
        field.most = range.most;
        if (field.kind == FieldKind::Flag)
            field.words = QStringList {QStringLiteral("off"), QStringLiteral("on")};
        return field;
    }

    QString m_prefix;
    std::function<const State &(const BenchState &state)> m_toRead;
    std::function<State &(BenchState &state)> m_toWrite;
    QVector<FieldRow> m_rows;
};

QVector<FieldRow> versionRows();
QVector<FieldRow> screensRows();
QVector<FieldRow> climateRows();
QVector<FieldRow> gaugesRows();
QVector<FieldRow> vehicleRows();
QVector<FieldRow> parkingRows();
QVector<FieldRow> textScreenRows();
QVector<FieldRow> measuredRows();
QVector<FieldRow> faultRows();

/// All of them, in the order of allFields().
const QVector<FieldRow> &fieldRows();

} // namespace boxsim
