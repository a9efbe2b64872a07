#pragma once

#include "boxsim/bench/replay.h"

#include "hexbytes.h"

#include <QtCore/QMetaType>
#include <QtCore/QString>
#include <QtCore/QStringList>

#include <memory>

Q_DECLARE_METATYPE(boxsim::Event::Kind)
Q_DECLARE_METATYPE(canbus::recording::Block)

/// Recordings written by hand, and what comes of playing them, as text.
namespace replaybench {

using boxsim::Action;
using boxsim::Event;
using boxsim::Instruction;
using boxsim::kNever;
using canbus::recording::Block;
using canbus::recording::Direction;

constexpr char kConnectRequest[] = "9f 02 21 01 00 00 00 20 9f 03";
constexpr char kConnectionCheck[] = "9f 02 40 01 00 00 01 40 9f 03";
constexpr char kAckOfRequest[] = "9f 06 21 21 9f 03";
constexpr char kReady[] = "9f 02 44 01 00 00 01 44 9f 03";
constexpr char kNotReady[] = "9f 02 45 01 00 00 00 44 9f 03";
constexpr char kLabels[] = "9f 02 51 03 01 53 9f 03";
constexpr char kScreens[] = "9f 02 48 02 00 1f 55 9f 03";
constexpr char kOwnReady[] = "frame 40 01 00 [00 01]";
constexpr char kEnd[] = "note: the recording is at its end";

inline Block received(qint64 timeUs, const char *hex)
{
    return {Direction::Received, timeUs, bytes(hex)};
}

inline Block sent(qint64 timeUs, const char *hex)
{
    return {Direction::Sent, timeUs, bytes(hex)};
}

inline Event command(Action action)
{
    Event event;
    event.command.action = action;
    return event;
}

inline QString text(const Instruction &instruction)
{
    const QString hex = QString::fromLatin1(instruction.bytes.toHex(' '));
    const auto byte = [](quint8 value) {
        return QString::number(value, 16).rightJustified(2, QLatin1Char('0'));
    };
    switch (instruction.kind) {
    case Instruction::Kind::SendBytes:
        return hex;
    case Instruction::Kind::SendFrame:
        return QStringLiteral("frame %1 %2 %3 [%4]")
            .arg(byte(instruction.id), byte(instruction.tp), byte(instruction.mod), hex);
    case Instruction::Kind::Note:
        return QStringLiteral("note: ") + instruction.text;
    default:
        return QStringLiteral("something else");
    }
}

/// As it comes out of text(), from digits with any spacing.
inline QString wire(const char *hex)
{
    return QString::fromLatin1(bytes(hex).toHex(' '));
}

/// A script whose instructions are collected with the times at which they were due.
class Player {
public:
    explicit Player(const QVector<Block> &blocks, bool loop = false)
        : replay(boxsim::Replay::make({QString(), blocks}, loop, &error))
    {
    }

    void observe(qint64 nowMs, Action action) { replay->observe(command(action), nowMs); }

    /// Lets the time pass from one due time to the next. @return what came, each with its time before it
    QStringList run(qint64 toMs)
    {
        QStringList all;
        for (qint64 due = replay->dueMs(); due != kNever && due <= toMs; due = replay->dueMs()) {
            const QVector<Instruction> instructions = replay->advance(due);
            if (instructions.isEmpty())
                return all << QStringLiteral("nothing was due at %1").arg(due);
            for (const Instruction &instruction : instructions)
                all.append(QStringLiteral("%1 %2").arg(QString::number(due), text(instruction)));
        }
        return all;
    }

    /// The same for a run that a connect request at 0 ms begins, without the times and the end.
    QStringList played()
    {
        observe(0, Action::ConnectRequest);
        QStringList all = run(1000000);
        for (QString &line : all)
            line.remove(0, line.indexOf(QLatin1Char(' ')) + 1);
        all.removeAll(QLatin1String(kEnd));
        return all;
    }

    QString error;
    std::unique_ptr<boxsim::Replay> replay;
};

inline QString at(qint64 ms, const char *hex)
{
    return QStringLiteral("%1 %2").arg(QString::number(ms), wire(hex));
}

inline QString told(qint64 ms, const char *text)
{
    return QStringLiteral("%1 %2").arg(QString::number(ms), QLatin1String(text));
}

} // namespace replaybench
