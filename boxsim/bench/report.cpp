#include "report.h"

#include "wireconstants.h"

#include <QtCore/QJsonArray>
#include <QtCore/QJsonDocument>

namespace boxsim {

namespace {

using canbus::Category;
using Kind = Event::Kind;

struct KindName {
    Kind kind;
    const char *json;
    const char *text;
};

constexpr KindName kKindNames[] = {
    {Kind::Command, "command", ""},
    {Kind::Ack, "ack", "ack"},
    {Kind::Nack, "nack", "nack"},
    {Kind::BadFrame, "badFrame", "bad frame"},
    {Kind::Resend, "resend", "resent"},
    {Kind::GiveUp, "giveUp", "gave up"},
    {Kind::LinkUp, "linkUp", "link up"},
    {Kind::LinkDown, "linkDown", "link down"},
    {Kind::Silent, "silent", "silent from here on"},
    {Kind::Speaking, "speaking", "the silence is over"},
    {Kind::Restart, "restart", "restarted"},
    {Kind::Fault, "fault", "fault"},
    {Kind::Sent, "sent", "sent"},
    {Kind::HangUp, "hangUp", "the line hangs up"},
    {Kind::LineBack, "lineBack", "the line is back"},
    {Kind::Note, "note", "note"},
    {Kind::Seed, "seed", "seed"},
};

struct CategoryName {
    Category category;
    const char *name;
};

constexpr CategoryName kCategoryNames[] = {
    {Category::Version, "version"},
    {Category::ScreensInfo, "screensInfo"},
    {Category::Climate, "climate"},
    {Category::Gauges, "gauges"},
    {Category::Vehicle, "vehicle"},
    {Category::ParkingAssist, "parking"},
    {Category::ScreensTransition, "screensTransition"},
    {Category::TextScreen, "textScreen"},
};

const KindName &nameOf(Kind kind)
{
    return kKindNames[int(kind)];
}

QByteArray categoryName(quint8 category)
{
    for (const CategoryName &row : kCategoryNames) {
        if (quint8(row.category) == category)
            return row.name;
    }
    return {};
}

QByteArray seconds(qint64 timeMs)
{
    return QByteArray::number(double(timeMs) / 1000, 'f', 3);
}

QByteArray hexId(int id)
{
    return QByteArray::number(id, 16).rightJustified(2, '0');
}

/// Members in the order in which they are added, which QJsonObject would not keep.
class JsonLine {
public:
    void add(const char *name, const QByteArray &rawValue)
    {
        m_line += m_line.isEmpty() ? "{" : ",";
        m_line += QByteArray("\"") + name + "\":" + rawValue;
    }

    void add(const QString &name, const QVariant &value)
    {
        const QJsonArray array {QJsonValue::fromVariant(value)};
        const QByteArray text = QJsonDocument(array).toJson(QJsonDocument::Compact);
        add(name.toLatin1().constData(), text.mid(1).chopped(1));
    }

    QByteArray finish() const { return m_line + '}'; }

private:
    QByteArray m_line;
};

/// Whether a line for people is of no use without the bytes.
bool showsBytes(const Event &event)
{
    const bool tellsOfBytes =
        event.kind == Kind::BadFrame || event.kind == Kind::Fault || event.kind == Kind::Sent;
    return tellsOfBytes && !event.bytes.isEmpty();
}

void addCommand(JsonLine &line, const Event &event)
{
    line.add(QStringLiteral("name"), event.command.name);
    for (const Argument &argument : event.command.arguments)
        line.add(argument.name, argument.value);
    if (event.repeated)
        line.add("repeated", "true");
    if (event.acknowledged)
        line.add("acknowledged", "true");
}

} // namespace

QByteArray toLine(const Event &event)
{
    QByteArray line = seconds(event.timeMs).rightJustified(8) + "  " + nameOf(event.kind).text;
    if (event.kind == Kind::Command)
        line += toText(event.command).toUtf8();
    if (event.repeated)
        line += " (repeated)";
    if (event.id != kNoId)
        line += "  id " + hexId(event.id);
    if (event.category != 0)
        line += " of " + categoryName(event.category);
    if (event.acknowledged)
        line += ", acknowledged";
    if (!event.reason.isEmpty())
        line += ": " + event.reason.toUtf8();
    if (showsBytes(event))
        line += ": " + event.bytes.toHex(' ');
    return line;
}

QByteArray toJson(const Event &event)
{
    JsonLine line;
    line.add("t", seconds(event.timeMs));
    line.add(QStringLiteral("event"), QString::fromLatin1(nameOf(event.kind).json));
    if (event.kind == Kind::Command)
        addCommand(line, event);
    if (event.id != kNoId)
        line.add("id", QByteArray::number(event.id));
    if (event.category != 0)
        line.add(QStringLiteral("category"), QString::fromLatin1(categoryName(event.category)));
    if (!event.reason.isEmpty())
        line.add(QStringLiteral("reason"), event.reason);
    if (!event.bytes.isEmpty())
        line.add(QStringLiteral("bytes"), QString::fromLatin1(event.bytes.toHex()));
    return line.finish();
}

QByteArray answerToJson(const QString &text)
{
    JsonLine line;
    line.add(QStringLiteral("answer"), text);
    return line.finish();
}

QString eventName(Event::Kind kind)
{
    return QString::fromLatin1(nameOf(kind).json);
}

QStringList eventNames()
{
    QStringList names;
    for (const KindName &row : kKindNames)
        names.append(QString::fromLatin1(row.json));
    return names;
}

} // namespace boxsim
