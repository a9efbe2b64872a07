#include "valuetext.h"

#include <QtCore/QByteArray>
#include <QtCore/QList>
#include <QtCore/QMap>
#include <QtCore/QMetaEnum>
#include <QtCore/QMetaType>
#include <QtCore/QStringList>

namespace canbus::monitor {

namespace {

bool isPlain(QChar character)
{
    switch (character.category()) {
    case QChar::Other_Control:
    case QChar::Other_Format: // turns the direction of the rest of the line, or cannot be seen
    case QChar::Separator_Line:
    case QChar::Separator_Paragraph:
        return false;
    default:
        return true;
    }
}

QString codeEscape(QChar character)
{
    return QStringLiteral("\\u%1").arg(ushort(character.unicode()), 4, 16, QLatin1Char('0'));
}

QString escaped(QChar character)
{
    switch (character.unicode()) {
    case '"':
        return QStringLiteral("\\\"");
    case '\\':
        return QStringLiteral("\\\\");
    case '\n':
        return QStringLiteral("\\n");
    case '\r':
        return QStringLiteral("\\r");
    case '\t':
        return QStringLiteral("\\t");
    default:
        return isPlain(character) ? QString(character) : codeEscape(character);
    }
}

bool isPair(const QString &text, int index)
{
    return index + 1 < text.size() && text[index].isHighSurrogate() && text[index + 1].isLowSurrogate();
}

QString flagText(bool flag)
{
    return flag ? QStringLiteral("true") : QStringLiteral("false");
}

QString bytesText(const QByteArray &bytes, Form form)
{
    const QString digits = QString::fromLatin1(bytes.toHex());
    return form == Form::Json ? quoted(digits) : digits;
}

template <class T>
QString listText(const QList<T> &list, Form form)
{
    QStringList items;
    for (const T &item : list)
        items << valueText(QVariant::fromValue(item), form);
    return QLatin1Char('[') + items.join(QLatin1Char(',')) + QLatin1Char(']');
}

QString mapText(const QMap<int, bool> &map, Form form)
{
    QStringList items;
    for (auto it = map.cbegin(); it != map.cend(); ++it) {
        const QString key = QString::number(it.key());
        items << (form == Form::Json ? quoted(key) : key) + QLatin1Char(':') + flagText(it.value());
    }
    return QLatin1Char('{') + items.join(QLatin1Char(',')) + QLatin1Char('}');
}

QString mapText(const QVariantMap &map, Form form)
{
    QStringList items;
    for (auto it = map.cbegin(); it != map.cend(); ++it) {
        const QString key = form == Form::Json ? quoted(it.key()) : it.key();
        items << key + QLatin1Char(':') + valueText(it.value(), form);
    }
    return QLatin1Char('{') + items.join(QLatin1Char(',')) + QLatin1Char('}');
}

/// The name of an enumeration's value, or nothing.
QString enumName(const QVariant &value)
{
    const int type = value.userType();
    const QMetaObject *const meta = QMetaType::metaObjectForType(type);
    if (!meta || !QMetaType::typeFlags(type).testFlag(QMetaType::IsEnumeration))
        return {};
    const QByteArray enumeration = QByteArray(value.typeName()).split(':').last();
    const int index = meta->indexOfEnumerator(enumeration.constData());
    return index < 0 ? QString() : QString::fromLatin1(meta->enumerator(index).valueToKey(value.toInt()));
}

QString containerText(const QVariant &value, Form form)
{
    const int type = value.userType();
    if (type == qMetaTypeId<QList<int>>())
        return listText(value.value<QList<int>>(), form);
    if (type == qMetaTypeId<QList<bool>>())
        return listText(value.value<QList<bool>>(), form);
    if (type == qMetaTypeId<QMap<int, bool>>())
        return mapText(value.value<QMap<int, bool>>(), form);
    if (type == QMetaType::QVariantMap)
        return mapText(value.toMap(), form);
    const QString name = enumName(value);
    if (!name.isEmpty())
        return form == Form::Json ? quoted(name) : name;
    return quoted(QStringLiteral("<%1>").arg(QLatin1String(value.typeName())));
}

} // namespace

QString quoted(const QString &text)
{
    QString result(QLatin1Char('"'));
    for (int i = 0; i < text.size(); ++i) {
        if (isPair(text, i)) {
            result += text.midRef(i, 2);
            ++i;
        } else if (text[i].isSurrogate()) {
            result += codeEscape(text[i]);
        } else {
            result += escaped(text[i]);
        }
    }
    return result + QLatin1Char('"');
}

QString valueText(const QVariant &value, Form form)
{
    switch (value.userType()) {
    case QMetaType::Bool:
        return flagText(value.toBool());
    case QMetaType::Char: // a byte: signed on one processor and unsigned on another
    case QMetaType::SChar:
    case QMetaType::UChar:
        return QString::number(*static_cast<const quint8 *>(value.constData()));
    case QMetaType::Short:
    case QMetaType::UShort:
    case QMetaType::Int:
    case QMetaType::UInt:
    case QMetaType::Long:
    case QMetaType::ULong:
    case QMetaType::LongLong:
    case QMetaType::ULongLong:
        return value.toString();
    case QMetaType::QString:
        return quoted(value.toString());
    case QMetaType::QByteArray:
        return bytesText(value.toByteArray(), form);
    case QMetaType::QStringList:
        return listText<QString>(value.toStringList(), form);
    default:
        return containerText(value, form);
    }
}

} // namespace canbus::monitor
