#include "jsonplace.h"

#include "commandline/similarnames.h"

#include <algorithm>
#include <cmath>

namespace boxsim {

namespace {

using Kind = JsonValue::Kind;

QString shown(const JsonValue &value)
{
    constexpr int kLongest = 40;
    switch (value.kind) {
    case Kind::Null:
        return QStringLiteral("null");
    case Kind::Flag:
        return value.flag ? QStringLiteral("true") : QStringLiteral("false");
    case Kind::Number:
        return QString::number(value.number, 'g', 12);
    case Kind::Text:
        if (value.text.size() > kLongest)
            return QLatin1Char('"') + value.text.left(kLongest) + QStringLiteral("...\"");
        return QLatin1Char('"') + value.text + QLatin1Char('"');
    case Kind::List:
        return QStringLiteral("a list");
    case Kind::Object:
        return QStringLiteral("an object");
    }
    return {};
}

bool isControl(QChar character)
{
    return character.category() == QChar::Other_Control;
}

/// What to take instead of a name that is none of these.
QString offer(const QString &name, const QStringList &names)
{
    return canbus::didYouMean(name, names,
                              QStringLiteral("there are %1").arg(names.join(QStringLiteral(", "))));
}

bool isHexDigit(QChar character)
{
    const char16_t code = character.toLower().unicode();
    return (code >= u'0' && code <= u'9') || (code >= u'a' && code <= u'f');
}

} // namespace

void Mistakes::add(int line, const QString &text)
{
    if (m_line != 0 && m_line <= line)
        return;
    m_line = line;
    m_text = text;
}

JsonPlace::JsonPlace(const JsonValue &value, const QString &subject, Mistakes *mistakes)
    : m_value(&value)
    , m_line(value.line)
    , m_name(subject)
    , m_isRoot(true)
    , m_mistakes(mistakes)
{
}

JsonPlace::JsonPlace(const JsonValue &value, int line, const QString &way, const QString &name,
                     Mistakes *mistakes)
    : m_value(&value)
    , m_line(line)
    , m_way(way)
    , m_name(name)
    , m_mistakes(mistakes)
{
}

QVariant JsonPlace::toVariant() const
{
    QVariantList list;
    switch (m_value->kind) {
    case Kind::Flag:
        return m_value->flag;
    case Kind::Number:
        return m_value->number;
    case Kind::Text:
        return m_value->text;
    case Kind::List:
        for (const JsonPlace &item : items())
            list.append(item.toVariant());
        return list;
    case Kind::Object:
        return QVariantMap();
    case Kind::Null:
        break;
    }
    return {};
}

qint64 JsonPlace::wholeNumber(qint64 least, qint64 most) const
{
    const double number = m_value->number;
    if (m_value->kind == Kind::Number && number >= double(least) && number <= double(most)
        && std::floor(number) == number)
        return qint64(number);
    expect(QStringLiteral("a whole number from %1 to %2").arg(least).arg(most));
    return least;
}

bool JsonPlace::flag() const
{
    if (m_value->kind != Kind::Flag)
        expect(QStringLiteral("true or false"));
    return m_value->flag;
}

QString JsonPlace::oneLine() const
{
    const QString &text = m_value->text;
    const bool isLine =
        m_value->kind == Kind::Text && !text.isEmpty() && std::none_of(text.begin(), text.end(), isControl);
    if (!isLine)
        expect(QStringLiteral("a line of text"));
    return text;
}

QByteArray JsonPlace::bytes() const
{
    QString digits = m_value->text;
    digits.remove(QLatin1Char(' '));
    if (m_value->kind != Kind::Text || digits.size() % 2 != 0
        || !std::all_of(digits.begin(), digits.end(), isHexDigit))
        expect(QStringLiteral("bytes as hexadecimal text like \"9F 06\""));
    return QByteArray::fromHex(digits.toLatin1());
}

QString JsonPlace::choice(const QStringList &names) const
{
    if (m_value->kind != Kind::Text)
        expect(QStringLiteral("a name like \"%1\"").arg(names.first()));
    else if (!names.contains(m_value->text))
        refuse(QStringLiteral("knows no %1: %2").arg(shown(*m_value), offer(m_value->text, names)));
    return m_value->text;
}

std::vector<JsonPlace> JsonPlace::items() const
{
    std::vector<JsonPlace> items;
    if (m_value->kind != Kind::List)
        expect(QStringLiteral("a list"));
    for (const JsonValue &item : m_value->items) {
        const QString name = m_name + QStringLiteral("[%1]").arg(items.size());
        items.push_back(JsonPlace(item, item.line, m_way, name, m_mistakes));
    }
    return items;
}

std::vector<JsonPlace> JsonPlace::members() const
{
    std::vector<JsonPlace> members;
    if (m_value->kind != Kind::Object)
        expect(QStringLiteral("an object"));
    QStringList names;
    for (const JsonMember &member : m_value->members) {
        members.push_back(JsonPlace(member.value, member.line, inside(), member.name, m_mistakes));
        if (names.contains(member.name))
            members.back().refuse(QStringLiteral("is given twice"));
        names.append(member.name);
    }
    return members;
}

bool JsonPlace::isObjectOf(const QStringList &names) const
{
    for (const JsonPlace &member : members()) {
        if (!names.contains(member.name()))
            member.refuseSaying(
                QStringLiteral("no member \"%1\": %2").arg(member.name(), offer(member.name(), names)));
    }
    return m_value->kind == Kind::Object;
}

bool JsonPlace::has(const QString &name) const
{
    const auto isIt = [&name](const JsonMember &member) { return member.name == name; };
    return std::any_of(m_value->members.begin(), m_value->members.end(), isIt);
}

JsonPlace JsonPlace::operator[](const QString &name) const
{
    const auto isIt = [&name](const JsonMember &member) { return member.name == name; };
    const auto member = std::find_if(m_value->members.begin(), m_value->members.end(), isIt);
    Q_ASSERT(member != m_value->members.end());
    return JsonPlace(member->value, member->line, inside(), name, m_mistakes);
}

QStringList JsonPlace::present(const QStringList &names) const
{
    QStringList found;
    for (const QString &name : names) {
        if (has(name))
            found.append(name);
    }
    return found;
}

void JsonPlace::refuse(const QString &what) const
{
    refuseSaying(m_name + QLatin1Char(' ') + what);
}

void JsonPlace::refuseSaying(const QString &sentence) const
{
    const QString way = m_way.isEmpty() ? QString() : m_way + QStringLiteral(": ");
    m_mistakes->add(m_line, way + sentence);
}

void JsonPlace::expect(const QString &what) const
{
    refuse(QStringLiteral("takes %1, not %2").arg(what, shown(*m_value)));
}

QString JsonPlace::inside() const
{
    if (m_isRoot || m_way.isEmpty())
        return m_isRoot ? QString() : m_name;
    return m_way + QLatin1Char('.') + m_name;
}

} // namespace boxsim
