#include "steeringhelp.h"

#include "boxsim/fields/fields.h"
#include "boxsim/fields/fieldvalues.h"

#include <QtCore/QVector>

#include <algorithm>

namespace boxsim {

namespace {

struct HelpLine {
    QString name;
    QString takes;
    QString about;
};

struct Command {
    const char *word;
    const char *usage;
    const char *about;
};

constexpr Command kCommands[] {
    {"send", "send ID TP MOD HEX...", "send a data frame once; all bytes hexadecimal"},
    {"bytes", "bytes HEX...", "put bytes on the line as they are"},
    {"restart", "restart", "switch the box off and on"},
    {"hangup", "hangup [MS]", "take the line away, for 1000 or MS milliseconds"},
    {"note", "note TEXT", "put a text among the reports"},
    {"quit", "quit", "end the run"},
    {"help", "help [BEGINNING]", "list everything, or the fields whose names begin so"},
};

HelpLine lineOf(const Command &command)
{
    return {QLatin1String(command.usage), {}, QLatin1String(command.about)};
}

HelpLine lineOf(const Field &field)
{
    const QString entries = field.count > 1 ? QStringLiteral(".1 to .%1").arg(field.count) : QString();
    return {field.name + entries, wantedBy(field), field.about};
}

/// In columns.
QStringList written(const QVector<HelpLine> &lines)
{
    int nameWidth = 0;
    int takesWidth = 0;
    for (const HelpLine &line : lines) {
        nameWidth = std::max(nameWidth, line.name.size());
        takesWidth = std::max(takesWidth, line.takes.size());
    }
    const QString gap = QStringLiteral("  ");
    QStringList list;
    for (const HelpLine &line : lines) {
        const QString takes = takesWidth > 0 ? line.takes.leftJustified(takesWidth) + gap : QString();
        list.append(line.name.leftJustified(nameWidth) + gap + takes + line.about);
    }
    return list;
}

QStringList overview()
{
    QVector<HelpLine> lines {
        {QStringLiteral("NAME=VALUE ..."), {}, QStringLiteral("set fields, all of a line at once")},
        {QStringLiteral("NAME"), {}, QStringLiteral("set a flag, or show the value of another field")},
        {QStringLiteral("NAME?"), {}, QStringLiteral("show the value of a field")},
    };
    for (const Command &command : kCommands)
        lines.append(lineOf(command));
    return written(lines)
        + QStringList {QStringLiteral("NAME begins with one of: ") + allObjects().join(QStringLiteral(", "))};
}

QVector<HelpLine> fieldsThatBegin(const QString &beginning)
{
    QVector<HelpLine> lines;
    for (const Field &field : allFields()) {
        if (field.name.startsWith(beginning, Qt::CaseInsensitive))
            lines.append(lineOf(field));
    }
    return lines;
}

QVector<HelpLine> commandNamed(const QString &word)
{
    QVector<HelpLine> lines;
    for (const Command &command : kCommands) {
        if (word == QLatin1String(command.word))
            lines.append(lineOf(command));
    }
    return lines;
}

} // namespace

QStringList allSteeringCommands()
{
    QStringList words;
    for (const Command &command : kCommands)
        words.append(QLatin1String(command.word));
    return words;
}

QStringList steeringHelp(const QString &beginning, QString *error)
{
    if (beginning.isEmpty())
        return overview();
    const QVector<HelpLine> lines = commandNamed(beginning) + fieldsThatBegin(beginning);
    if (!lines.isEmpty())
        return written(lines);
    int field = 0;
    int entry = 0;
    return findField(beginning, &field, &entry, error) ? written({lineOf(allFields().at(field))})
                                                       : QStringList();
}

} // namespace boxsim
