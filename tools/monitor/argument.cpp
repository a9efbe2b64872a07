#include "argument.h"

#include "valuetext.h"

#include <QtCore/QByteArray>
#include <QtCore/QList>
#include <QtCore/QMetaType>

#include <algorithm>
#include <iterator>
#include <limits>

namespace canbus::monitor {

namespace {

struct IntegerType {
    int type;
    qint64 lowest;
    qint64 highest;
};

template <class T>
constexpr IntegerType integerType(int type)
{
    return {type, std::numeric_limits<T>::min(), std::numeric_limits<T>::max()};
}

constexpr IntegerType kIntegerTypes[] = {
    {QMetaType::Char, -128, 255}, // one byte, which callers write signed or unsigned
    {QMetaType::SChar, -128, 255},
    integerType<quint8>(QMetaType::UChar),
    integerType<qint16>(QMetaType::Short),
    integerType<quint16>(QMetaType::UShort),
    integerType<qint32>(QMetaType::Int),
    integerType<quint32>(QMetaType::UInt),
    integerType<qint64>(QMetaType::LongLong),
};

const IntegerType *integerTypeOf(int type)
{
    const auto found = std::find_if(std::begin(kIntegerTypes), std::end(kIntegerTypes),
                                    [type](const IntegerType &row) { return row.type == type; });
    return found == std::end(kIntegerTypes) ? nullptr : found;
}

Failure misfit(const QString &text, int type, const QString &right)
{
    return {
        QStringLiteral("%1 is no %2: %3").arg(quoted(text), QLatin1String(QMetaType::typeName(type)), right)};
}

Outcome<QVariant> toInteger(const QString &text, const IntegerType &row)
{
    // Not base 0, which would read 010 as eight.
    const bool isHex = text.startsWith(QLatin1String("0x"), Qt::CaseInsensitive);
    bool ok = false;
    const qint64 number = text.toLongLong(&ok, isHex ? 16 : 10);
    if (!ok || number < row.lowest || number > row.highest) {
        return misfit(
            text, row.type,
            QStringLiteral("a number from %1 to %2, decimal or 0x..").arg(row.lowest).arg(row.highest));
    }
    QVariant value(number);
    value.convert(row.type);
    return value;
}

Outcome<QVariant> toFlag(const QString &text)
{
    if (text == QLatin1String("true") || text == QLatin1String("1"))
        return QVariant(true);
    if (text == QLatin1String("false") || text == QLatin1String("0"))
        return QVariant(false);
    return misfit(text, QMetaType::Bool, QStringLiteral("true, false, 1 or 0"));
}

bool isHexDigit(QChar character)
{
    const char c = character.toLatin1();
    return (c >= '0' && c <= '9') || (c >= 'a' && c <= 'f') || (c >= 'A' && c <= 'F');
}

Outcome<QVariant> toBytes(const QString &text)
{
    if (text.size() % 2 != 0 || !std::all_of(text.cbegin(), text.cend(), isHexDigit))
        return misfit(text, QMetaType::QByteArray, QStringLiteral("two hexadecimal digits for each byte"));
    return QVariant(QByteArray::fromHex(text.toLatin1()));
}

Outcome<QVariant> toText(const QString &text)
{
    if (!text.startsWith(QLatin1Char('"')))
        return QVariant(text);
    QString plain;
    int i = 1;
    for (; i < text.size() && text[i] != QLatin1Char('"'); ++i) {
        if (text[i] == QLatin1Char('\\') && i + 1 < text.size())
            ++i;
        plain += text[i];
    }
    if (i != text.size() - 1)
        return misfit(text, QMetaType::QString, QStringLiteral("nothing may follow the closing quote"));
    return QVariant(plain);
}

template <class T>
Outcome<QVariant> toList(const QString &text)
{
    const int listType = qMetaTypeId<QList<T>>();
    if (!text.startsWith(QLatin1Char('[')) || !text.endsWith(QLatin1Char(']')))
        return misfit(text, listType, QStringLiteral("items between brackets, for example [1,0]"));
    const QString inside = text.mid(1, text.size() - 2);
    QList<T> list;
    if (inside.trimmed().isEmpty())
        return QVariant::fromValue(list);
    const Outcome<QStringList> items = splitArguments(inside);
    if (!items)
        return items.failure();
    for (const QString &item : *items) {
        const Outcome<QVariant> value = toArgument(item, qMetaTypeId<T>());
        if (!value)
            return value.failure();
        list << value->value<T>();
    }
    return QVariant::fromValue(list);
}

Outcome<QVariant> toTextList(const QString &text)
{
    const Outcome<QVariant> list = toList<QString>(text);
    if (!list)
        return list.failure();
    return QVariant(QStringList(list->value<QList<QString>>()));
}

Failure noText(int type)
{
    const char *const name = QMetaType::typeName(type); // null for a type that is not registered
    const QString typeText = name ? QString::fromLatin1(name) : QStringLiteral("value of an unknown type");
    return {QStringLiteral("a %1 cannot be written here, only flags, numbers, texts, bytes and lists: call "
                           "this from a host of your own")
                .arg(typeText)};
}

/// Where an argument is being read: what is open around the next character.
struct Nesting {
    bool inQuotes = false;
    bool isEscaped = false;
    int brackets = 0;

    void pass(QChar character)
    {
        const bool wasEscaped = isEscaped;
        isEscaped = inQuotes && !wasEscaped && character == QLatin1Char('\\');
        if (character == QLatin1Char('"') && !wasEscaped)
            inQuotes = !inQuotes;
        else if (!inQuotes && character == QLatin1Char('['))
            ++brackets;
        else if (!inQuotes && character == QLatin1Char(']'))
            --brackets;
    }
    bool isOutside() const { return !inQuotes && brackets == 0; }
};

} // namespace

Outcome<QStringList> splitArguments(const QString &text)
{
    QStringList arguments {QString()};
    Nesting nesting;
    for (const QChar character : text) {
        if (character == QLatin1Char(',') && nesting.isOutside()) {
            arguments << QString();
            continue;
        }
        nesting.pass(character);
        arguments.last() += character;
    }
    if (!nesting.isOutside())
        return Failure {QStringLiteral("a quote or bracket is not closed in %1").arg(quoted(text))};
    for (QString &argument : arguments)
        argument = argument.trimmed();
    return arguments;
}

Outcome<QVariant> toArgument(const QString &text, int type)
{
    if (const IntegerType *row = integerTypeOf(type))
        return toInteger(text, *row);
    if (type == QMetaType::Bool)
        return toFlag(text);
    if (type == QMetaType::QString)
        return toText(text);
    if (type == QMetaType::QByteArray)
        return toBytes(text);
    if (type == QMetaType::QStringList)
        return toTextList(text);
    if (type == qMetaTypeId<QList<int>>())
        return toList<int>(text);
    if (type == qMetaTypeId<QList<bool>>())
        return toList<bool>(text);
    return noText(type);
}

} // namespace canbus::monitor
