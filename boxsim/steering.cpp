#include "steering.h"

#include "boxsim/fields/fieldvalues.h"
#include "boxsim/steeringhelp.h"

#include "commandline/similarnames.h"

#include <QtCore/QRegularExpression>

#include <algorithm>

namespace boxsim {

namespace {

using Kind = Instruction::Kind;

Steered failure(const QString &error)
{
    Steered steered;
    steered.error = error;
    return steered;
}

Steered instruction(Kind kind)
{
    Steered steered;
    steered.instruction.emplace();
    steered.instruction->kind = kind;
    return steered;
}

/// Bytes from pairs of hexadecimal digits, with or without blanks between the pairs.
std::optional<QByteArray> bytesOf(const QString &text)
{
    static const QRegularExpression pairs(QStringLiteral("^\\s*+(?:[0-9A-Fa-f]{2}\\s*+)*+$"));
    if (!pairs.match(text).hasMatch())
        return std::nullopt;
    return QByteArray::fromHex(text.toLatin1());
}

Steered sendFrame(const QString &arguments)
{
    const std::optional<QByteArray> bytes = bytesOf(arguments);
    if (!bytes || bytes->size() < 3)
        return failure(QStringLiteral("send takes id, category, sub-type and payload, two hexadecimal digits "
                                      "a byte, as in: send 51 07 00 02"));
    Steered steered = instruction(Kind::SendFrame);
    steered.instruction->id = quint8(bytes->at(0));
    steered.instruction->tp = quint8(bytes->at(1));
    steered.instruction->mod = quint8(bytes->at(2));
    steered.instruction->bytes = bytes->mid(3);
    return steered;
}

Steered sendBytes(const QString &arguments)
{
    const std::optional<QByteArray> bytes = bytesOf(arguments);
    if (!bytes || bytes->isEmpty())
        return failure(
            QStringLiteral("bytes takes two hexadecimal digits a byte, as in: bytes 9F 06 21 21 9F 03"));
    Steered steered = instruction(Kind::SendBytes);
    steered.instruction->bytes = *bytes;
    return steered;
}

Steered hangUp(const QString &arguments)
{
    Steered steered = instruction(Kind::HangUp);
    bool isNumber = true;
    const int ms = arguments.isEmpty() ? kUsualHangUpMs : arguments.toInt(&isNumber);
    if (!isNumber || ms < kShortestHangUpMs || ms > kLongestHangUpMs)
        return failure(
            QStringLiteral("hangup takes milliseconds from %1 to %2, or nothing, not \"%3\"")
                .arg(QString::number(kShortestHangUpMs), QString::number(kLongestHangUpMs), arguments));
    steered.instruction->ms = ms;
    return steered;
}

bool isControl(QChar character)
{
    return character.category() == QChar::Other_Control;
}

Steered note(const QString &text)
{
    if (text.isEmpty())
        return failure(QStringLiteral("note takes a text, as in: note door test begins"));
    if (std::any_of(text.begin(), text.end(), isControl))
        return failure(QStringLiteral("note takes a text without control characters"));
    Steered steered = instruction(Kind::Note);
    steered.instruction->text = text;
    return steered;
}

Steered plain(const QString &word, const QString &arguments)
{
    if (!arguments.isEmpty())
        return failure(QStringLiteral("%1 stands alone, without \"%2\"").arg(word, arguments));
    return instruction(word == QLatin1String("quit") ? Kind::End : Kind::Restart);
}

Steered help(const QString &beginning)
{
    Steered steered;
    steered.answer = steeringHelp(beginning, &steered.error);
    return steered;
}

Steered command(const QString &word, const QString &arguments)
{
    if (word == QLatin1String("send"))
        return sendFrame(arguments);
    if (word == QLatin1String("bytes"))
        return sendBytes(arguments);
    if (word == QLatin1String("hangup"))
        return hangUp(arguments);
    if (word == QLatin1String("note"))
        return note(arguments);
    return word == QLatin1String("help") ? help(arguments) : plain(word, arguments);
}

Steered unknownCommand(const QString &word)
{
    const QString offer =
        canbus::didYouMean(word, allSteeringCommands(), QStringLiteral("help lists what there is"));
    return failure(QStringLiteral("no command \"%1\": %2").arg(word, offer));
}

Steered show(const QString &name, const BenchState &state)
{
    Steered steered;
    int field = 0;
    int entry = 0;
    if (findField(name, &field, &entry, &steered.error))
        steered.answer.append(name + QLatin1Char('=')
                              + textOfValue(allFields().at(field), valueOf(state, field, entry)));
    return steered;
}

/// NAME alone.
Steered nameAlone(const QString &name, const BenchState &state)
{
    Assignment assignment;
    QString error;
    if (!findField(name, &assignment.field, &assignment.entry, &error))
        return failure(error);
    const Field &field = allFields().at(assignment.field);
    if (field.kind != FieldKind::Flag || (field.count > 1 && assignment.entry < 0))
        return show(name, state);
    assignment.value = true;
    Steered steered = instruction(Kind::Set);
    steered.instruction->assignments.append(assignment);
    return steered;
}

Steered set(const QString &line)
{
    static const QRegularExpression beforeName(
        QStringLiteral("\\s+(?=[A-Za-z]+\\.[A-Za-z0-9]+(?:\\.[A-Za-z0-9]+)?=)"));
    Steered steered = instruction(Kind::Set);
    QString error;
    const QStringList parts = line.split(beforeName);
    for (const QString &part : parts) {
        Assignment assignment;
        const QString name = part.section(QLatin1Char('='), 0, 0).trimmed();
        if (!assignText(name, part.section(QLatin1Char('='), 1).trimmed(), &assignment, &error))
            return failure(error);
        steered.instruction->assignments.append(assignment);
    }
    return steered;
}

bool isFieldLine(const QString &word)
{
    return word.contains(QLatin1Char('.')) || allObjects().contains(word);
}

} // namespace

Steered steer(const QString &line, const BenchState &state)
{
    const QString trimmed = line.trimmed();
    if (trimmed.isEmpty() || trimmed.startsWith(QLatin1Char('#')))
        return {};
    static const QRegularExpression wordAndRest(QStringLiteral("^(\\S+)\\s*(.*)$"),
                                                QRegularExpression::DotMatchesEverythingOption);
    const QRegularExpressionMatch match = wordAndRest.match(trimmed);
    if (allSteeringCommands().contains(match.captured(1)))
        return command(match.captured(1), match.captured(2));
    if (trimmed.contains(QLatin1Char('=')))
        return set(trimmed);
    if (trimmed.endsWith(QLatin1Char('?')))
        return show(trimmed.chopped(1).trimmed(), state);
    return isFieldLine(match.captured(1)) ? nameAlone(trimmed, state) : unknownCommand(match.captured(1));
}

} // namespace boxsim
