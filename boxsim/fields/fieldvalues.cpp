#include "fieldvalues.h"

#include <cmath>

namespace boxsim {

namespace {

constexpr int kMostQuoted = 40;
constexpr QChar kSeparator = QLatin1Char(',');
constexpr QChar kEscape = QLatin1Char('\\');

bool isNumber(const QVariant &value)
{
    switch (value.userType()) {
    case QMetaType::Int:
    case QMetaType::UInt:
    case QMetaType::LongLong:
    case QMetaType::ULongLong:
    case QMetaType::Double:
        return true;
    default:
        return false;
    }
}

QString quoted(const QString &text)
{
    const QString shown = text.size() > kMostQuoted ? text.left(kMostQuoted) + QStringLiteral("…") : text;
    return QLatin1Char('"') + shown + QLatin1Char('"');
}

QString numberText(double number)
{
    return QString::number(number, 'g', 15);
}

/// What was given, for an error.
QString describe(const QVariant &value)
{
    if (isNumber(value))
        return numberText(value.toDouble());
    switch (value.userType()) {
    case QMetaType::QString:
        return quoted(value.toString());
    case QMetaType::Bool:
        return value.toBool() ? QStringLiteral("true") : QStringLiteral("false");
    case QMetaType::QVariantList:
    case QMetaType::QStringList:
        return QStringLiteral("a list");
    case QMetaType::QVariantMap:
        return QStringLiteral("an object");
    default:
        return QStringLiteral("null");
    }
}

bool readNumber(const Field &field, const QVariant &given, QVariant *value)
{
    const double number = given.toDouble();
    if (!isNumber(given) || !(number >= field.least && number <= field.most))
        return false;
    const bool whole = field.kind == FieldKind::Number;
    *value = whole ? QVariant(int(number)) : QVariant(number);
    return !whole || std::trunc(number) == number;
}

bool readFlag(const Field &field, const QVariant &given, QVariant *value)
{
    if (given.userType() == QMetaType::Bool) {
        *value = given;
        return true;
    }
    const QStringList no {field.words.first(), QStringLiteral("false"), QStringLiteral("off"),
                          QStringLiteral("0")};
    const QStringList yes {field.words.last(), QStringLiteral("true"), QStringLiteral("on"),
                           QStringLiteral("1")};
    if (given.userType() != QMetaType::QString)
        return false;
    const QString word = given.toString();
    *value = yes.contains(word);
    return yes.contains(word) || no.contains(word);
}

/// What is wrong with texts, or nothing.
QString complaint(const QStringList &texts)
{
    int bytes = 0;
    for (const QString &text : texts) {
        if (text.contains(QChar::Null))
            return QStringLiteral("no zero character: it would end the text");
        bytes += text.toUtf8().size() + 1;
    }
    if (bytes <= kMostTextBytes)
        return {};
    return QStringLiteral("at most %1 bytes of UTF-8 with a zero after each text, not %2")
        .arg(QString::number(kMostTextBytes), QString::number(bytes));
}

bool readText(const QVariant &given, QVariant *value, QString *wanted)
{
    if (given.userType() != QMetaType::QString) {
        *wanted = QStringLiteral("a text, not ") + describe(given);
        return false;
    }
    *value = given;
    *wanted = complaint({given.toString()});
    return wanted->isEmpty();
}

bool readTexts(const Field &field, const QVariant &given, QVariant *value, QString *wanted)
{
    if (given.userType() != QMetaType::QVariantList && given.userType() != QMetaType::QStringList) {
        *wanted = QStringLiteral("a list of texts, not ") + describe(given);
        return false;
    }
    const QVariantList list = given.toList();
    for (const QVariant &text : list) {
        if (text.userType() != QMetaType::QString) {
            *wanted = QStringLiteral("texts alone in its list, not ") + describe(text);
            return false;
        }
    }
    *value = given.toStringList();
    *wanted = complaint(given.toStringList());
    if (list.size() > int(field.most))
        *wanted = QStringLiteral("at most %1 texts, not %2")
                      .arg(QString::number(int(field.most)), QString::number(list.size()));
    return wanted->isEmpty();
}

/// @param wanted  gets what the field takes instead
bool readEntry(const Field &field, const QVariant &given, QVariant *value, QString *wanted)
{
    const QString instead = QStringLiteral(", not ") + describe(given);
    switch (field.kind) {
    case FieldKind::Flag:
        *wanted = wantedBy(field) + instead;
        return readFlag(field, given, value);
    case FieldKind::Number:
    case FieldKind::Share:
        *wanted = wantedBy(field) + instead;
        return readNumber(field, given, value);
    case FieldKind::Text:
        return readText(given, value, wanted);
    case FieldKind::Texts:
        return readTexts(field, given, value, wanted);
    }
    return false;
}

/// Splits at the commas and takes the blanks around the parts away. What follows a backslash stays as it is.
QStringList splitList(const QString &text)
{
    QStringList parts;
    QString part;
    int kept = 0; // the length of `part` without the blanks that may turn out to be its last
    for (int i = 0; i < text.size(); ++i) {
        const bool escaped = text[i] == kEscape && i + 1 < text.size();
        const QChar character = escaped ? text[++i] : text[i];
        if (!escaped && character == kSeparator) {
            parts.append(part.left(kept));
            part.clear();
            kept = 0;
        } else if (escaped || !character.isSpace() || !part.isEmpty()) {
            part.append(character);
            kept = escaped || !character.isSpace() ? part.size() : kept;
        }
    }
    parts.append(part.left(kept));
    return parts;
}

QString escapedText(const QString &text)
{
    QString escaped;
    for (int i = 0; i < text.size(); ++i) {
        const bool isOutside = i == 0 || i == text.size() - 1;
        if (text[i] == kSeparator || text[i] == kEscape || (isOutside && text[i].isSpace()))
            escaped.append(kEscape);
        escaped.append(text[i]);
    }
    return escaped;
}

QVariant typedEntry(FieldKind kind, const QString &text)
{
    if (kind != FieldKind::Number && kind != FieldKind::Share)
        return text;
    bool isNumber = false;
    const double number = text.toDouble(&isNumber);
    return isNumber && std::isfinite(number) ? QVariant(number) : QVariant(text);
}

QString textOfEntry(const Field &field, const QVariant &value)
{
    if (field.kind == FieldKind::Flag)
        return value.toBool() ? field.words.last() : field.words.first();
    return field.kind == FieldKind::Text ? value.toString() : numberText(value.toDouble());
}

} // namespace

QString wantedBy(const Field &field)
{
    const QString range =
        QStringLiteral("number from %1 to %2").arg(numberText(field.least), numberText(field.most));
    switch (field.kind) {
    case FieldKind::Flag:
        return field.words.join(QStringLiteral(" or "));
    case FieldKind::Number:
        return QStringLiteral("a whole ") + range;
    case FieldKind::Share:
        return QStringLiteral("a ") + range;
    case FieldKind::Text:
        return QStringLiteral("a text");
    case FieldKind::Texts:
        return QStringLiteral("a list of at most %1 texts").arg(int(field.most));
    }
    return {};
}

bool checkEntry(const Field &field, const QString &name, const QVariant &given, QVariant *value,
                QString *error)
{
    QString wanted;
    if (readEntry(field, given, value, &wanted))
        return true;
    *error = name + QStringLiteral(" takes ") + wanted;
    return false;
}

bool checkAllEntries(const Field &field, const QVariant &given, QVariant *value, QString *error)
{
    const QVariantList list = given.toList();
    if (list.size() != field.count) {
        const QString instead = given.userType() == QMetaType::QVariantList
            ? QString::number(list.size())
            : describe(given) + QStringLiteral("; one of them is %1.1").arg(field.name);
        *error = QStringLiteral("%1 takes a list of %2 values, not %3")
                     .arg(field.name, QString::number(field.count), instead);
        return false;
    }
    QVariantList checked;
    for (const QVariant &one : list) {
        QVariant entry;
        const QString name = QStringLiteral("%1.%2").arg(field.name).arg(checked.size() + 1);
        if (!checkEntry(field, name, one, &entry, error))
            return false;
        checked.append(entry);
    }
    *value = checked;
    return true;
}

QVariant typedValue(const Field &field, bool whole, const QString &text)
{
    if (field.kind == FieldKind::Texts)
        return text.isEmpty() ? QStringList() : splitList(text);
    if (!whole)
        return typedEntry(field.kind, text);
    QVariantList list;
    const QStringList parts = splitList(text);
    for (const QString &part : parts)
        list.append(typedEntry(field.kind, part));
    return list;
}

QString textOfValue(const Field &field, const QVariant &value)
{
    QStringList parts;
    if (field.kind == FieldKind::Texts) {
        const QStringList texts = value.toStringList();
        for (const QString &text : texts)
            parts.append(escapedText(text));
    } else if (value.userType() == QMetaType::QVariantList) {
        const QVariantList entries = value.toList();
        for (const QVariant &entry : entries)
            parts.append(textOfEntry(field, entry));
    } else {
        return textOfEntry(field, value);
    }
    return parts.join(kSeparator);
}

} // namespace boxsim
