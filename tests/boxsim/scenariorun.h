#pragma once

#include "boxsim/scenario/scenarioplayer.h"

#include <QtCore/QString>
#include <QtCore/QStringList>

#include <initializer_list>

/// A scenario under way in virtual time, and what it leads to as text.
namespace scenariorun {

inline QString text(const boxsim::Assignment &assignment)
{
    const boxsim::Field &field = boxsim::allFields().at(assignment.field);
    const QString entry = assignment.entry < 0 ? QString() : QStringLiteral(".%1").arg(assignment.entry + 1);
    return field.name + entry + QLatin1Char('=') + assignment.value.toString();
}

inline QString text(const boxsim::Instruction &instruction)
{
    QStringList set;
    switch (instruction.kind) {
    case boxsim::Instruction::Kind::Set:
        for (const boxsim::Assignment &assignment : instruction.assignments)
            set.append(text(assignment));
        return set.join(QLatin1Char(' '));
    case boxsim::Instruction::Kind::SendFrame:
        return QStringLiteral("frame %1 %2 %3 %4")
            .arg(instruction.id)
            .arg(instruction.tp)
            .arg(instruction.mod)
            .arg(QString::fromLatin1(instruction.bytes.toHex(' ')));
    case boxsim::Instruction::Kind::SendBytes:
        return QStringLiteral("bytes ") + QString::fromLatin1(instruction.bytes.toHex(' '));
    case boxsim::Instruction::Kind::Restart:
        return QStringLiteral("restart");
    case boxsim::Instruction::Kind::HangUp:
        return QStringLiteral("hang up %1").arg(instruction.ms);
    case boxsim::Instruction::Kind::Note:
        return instruction.text;
    case boxsim::Instruction::Kind::End:
        return QStringLiteral("end");
    case boxsim::Instruction::Kind::Fail:
        return QStringLiteral("fail ") + instruction.text;
    }
    return {};
}

inline boxsim::Event reported(boxsim::Event::Kind kind)
{
    boxsim::Event made;
    made.kind = kind;
    return made;
}

inline boxsim::Event command(const char *name, const QVector<boxsim::Argument> &arguments = {})
{
    boxsim::Event made = reported(boxsim::Event::Kind::Command);
    made.command.name = QString::fromLatin1(name);
    made.command.arguments = arguments;
    return made;
}

inline boxsim::Event pressed(const char *name, bool press)
{
    return command(name, {{QStringLiteral("press"), press}, {QStringLiteral("value"), 0}});
}

/// A scenario under way in virtual time.
class Run {
public:
    explicit Run(const QByteArray &json)
        : m_player(read(json))
    {
    }

    /// Lets time pass from due time to due time, and tells what came: "MS what", in order.
    QStringList until(qint64 nowMs)
    {
        QStringList lines;
        for (qint64 due = m_player.dueMs(); due != boxsim::kNever && due <= nowMs; due = m_player.dueMs())
            lines += at(due);
        return lines;
    }

    QStringList at(qint64 nowMs)
    {
        QStringList lines;
        for (const boxsim::Instruction &instruction : m_player.advance(nowMs))
            lines.append(QString::number(nowMs) + QLatin1Char(' ') + text(instruction));
        return lines;
    }

    void observe(qint64 nowMs, const boxsim::Event &event) { m_player.observe(event, nowMs); }

    qint64 dueMs() const { return m_player.dueMs(); }

private:
    static boxsim::Scenario read(const QByteArray &json)
    {
        boxsim::Scenario scenario;
        QString error;
        if (!boxsim::readScenario(json, QStringLiteral("test"), &scenario, &error))
            qFatal("%s", qPrintable(error));
        return scenario;
    }

    boxsim::ScenarioPlayer m_player;
};

inline QStringList lines(std::initializer_list<const char *> texts)
{
    QStringList list;
    for (const char *one : texts)
        list.append(QString::fromUtf8(one));
    return list;
}

} // namespace scenariorun
