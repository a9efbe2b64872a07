#include "scenariodeeds.h"

namespace boxsim {

namespace {

using Kind = Instruction::Kind;

Step doing(const Instruction &instruction)
{
    Step step;
    step.kind = Step::Kind::Do;
    step.instruction = instruction;
    return step;
}

Step doing(Kind kind)
{
    Instruction instruction;
    instruction.kind = kind;
    return doing(instruction);
}

quint8 oneByte(const JsonPlace &value)
{
    const QByteArray bytes = value.bytes();
    if (bytes.size() != 1)
        value.expect(QStringLiteral("one byte as hexadecimal text like \"5A\""));
    return quint8(bytes.isEmpty() ? 0 : bytes.at(0));
}

/// A member that says with true that something is done.
void requireTrue(const JsonPlace &value)
{
    if (!value.flag())
        value.expect(QStringLiteral("true"));
}

QPoint readPoint(const JsonPlace &item, Assignment *assignment)
{
    const std::vector<JsonPlace> parts = item.items();
    if (parts.size() != 2) {
        item.refuse(QStringLiteral("takes two numbers, [ms, value]"));
        return {};
    }
    QString error;
    const int ms = int(parts[0].wholeNumber(0, kLongestMs));
    if (!assign(item.name().section(QLatin1Char('['), 0, 0), parts[1].toVariant(), assignment, &error))
        item.refuseSaying(error);
    return {ms, assignment->value.toInt()};
}

Curve readCurve(const JsonPlace &list)
{
    Curve curve;
    for (const JsonPlace &item : list.items()) {
        const QPoint point = readPoint(item, &curve.assignment);
        if (!curve.points.isEmpty() && point.x() <= curve.points.last().x())
            item.refuse(QStringLiteral("takes a time behind that of the point before, %1")
                            .arg(curve.points.last().x()));
        curve.points.append(point);
    }
    if (curve.points.size() < 2)
        list.refuse(QStringLiteral("takes two points [ms, value] or more"));
    const Field *field = curve.assignment.field < 0 ? nullptr : &allFields().at(curve.assignment.field);
    if (field != nullptr && (field->kind != FieldKind::Number || !curve.assignment.value.canConvert<int>()))
        list.refuse(QStringLiteral("cannot move: it is no whole number"));
    return curve;
}

Step readText(Kind kind, const JsonPlace &value)
{
    Step step = doing(kind);
    step.instruction.text = value.oneLine();
    return step;
}

} // namespace

QVector<Assignment> readAssignments(const JsonPlace &object)
{
    QVector<Assignment> assignments;
    for (const JsonPlace &member : object.members()) {
        Assignment assignment;
        QString error;
        if (assign(member.name(), member.toVariant(), &assignment, &error))
            assignments.append(assignment);
        else
            member.refuseSaying(error);
    }
    return assignments;
}

Step readSet(const JsonPlace &value)
{
    Step step = doing(Kind::Set);
    step.instruction.assignments = readAssignments(value);
    if (value.members().empty())
        value.refuse(QStringLiteral("takes at least one field with its value"));
    return step;
}

Step readRamp(const JsonPlace &value)
{
    Step step;
    step.kind = Step::Kind::Ramp;
    for (const JsonPlace &member : value.members())
        step.curves.append(readCurve(member));
    if (step.curves.isEmpty())
        value.refuse(QStringLiteral("takes at least one field with its points"));
    return step;
}

Step readSend(const JsonPlace &value)
{
    Step step = doing(Kind::SendFrame);
    const QString id = QStringLiteral("id");
    const QString tp = QStringLiteral("tp");
    const QString mod = QStringLiteral("mod");
    const QString data = QStringLiteral("data");
    if (!value.isObjectOf({id, tp, mod, data}))
        return step;
    if (!value.has(id) || !value.has(tp))
        value.refuse(QStringLiteral("has no %1").arg(value.has(id) ? tp : id));
    if (value.has(id))
        step.instruction.id = oneByte(value[id]);
    if (value.has(tp))
        step.instruction.tp = oneByte(value[tp]);
    if (value.has(mod))
        step.instruction.mod = oneByte(value[mod]);
    if (value.has(data))
        step.instruction.bytes = value[data].bytes();
    return step;
}

Step readBytes(const JsonPlace &value)
{
    Step step = doing(Kind::SendBytes);
    step.instruction.bytes = value.bytes();
    if (step.instruction.bytes.isEmpty())
        value.refuse(QStringLiteral("takes at least one byte"));
    return step;
}

Step readRestart(const JsonPlace &value)
{
    requireTrue(value);
    return doing(Kind::Restart);
}

Step readHangUp(const JsonPlace &value)
{
    Step step = doing(Kind::HangUp);
    step.instruction.ms = int(value.wholeNumber(kShortestHangUpMs, kLongestHangUpMs));
    return step;
}

Step readNote(const JsonPlace &value)
{
    return readText(Kind::Note, value);
}

Step readFail(const JsonPlace &value)
{
    return readText(Kind::Fail, value);
}

Step readEnd(const JsonPlace &value)
{
    requireTrue(value);
    return doing(Kind::End);
}

} // namespace boxsim
