#pragma once

#include "boxbench.h"
#include "boxsim/bench/bench.h"

#include <QtCore/QMap>

#include <memory>

/// A bench in virtual time, led by a script that the test writes down; what happens is collected as text.
namespace scriptedbench {

using boxsim::Instruction;

/// Gives its instructions at their times, and keeps what it was told.
class WrittenScript : public boxsim::Script {
public:
    void at(qint64 ms, const Instruction &instruction) { m_instructions[ms].append(instruction); }

    void observe(const boxsim::Event &event, qint64 nowMs) override
    {
        observed.append(QString::number(nowMs) + ' ' + boxbench::text(event));
    }

    QVector<Instruction> advance(qint64 nowMs) override
    {
        QVector<Instruction> due;
        while (!m_instructions.isEmpty() && m_instructions.firstKey() <= nowMs)
            due += m_instructions.take(m_instructions.firstKey());
        return due;
    }

    qint64 dueMs() const override
    {
        return m_instructions.isEmpty() ? boxsim::kNever : m_instructions.firstKey();
    }

    bool isInsideFrame() const override { return insideFrame; }

    QStringList observed;
    bool insideFrame = false;

private:
    QMap<qint64, QVector<Instruction>> m_instructions;
};

inline Instruction instruction(Instruction::Kind kind, const QString &text = {})
{
    Instruction made;
    made.kind = kind;
    made.text = text;
    return made;
}

/// Sets fields by their names: `"climate.mainTemp=215 fault.silence=on"`.
inline Instruction set(const QString &assignments)
{
    Instruction made;
    made.kind = Instruction::Kind::Set;
    const QStringList all = assignments.split(' ');
    for (const QString &one : all) {
        boxsim::Assignment assignment;
        QString error;
        if (!boxsim::assignText(one.section('=', 0, 0), one.section('=', 1), &assignment, &error))
            qFatal("%s", qPrintable(error));
        made.assignments.append(assignment);
    }
    return made;
}

inline Instruction sendBytes(const char *hex)
{
    Instruction made;
    made.kind = Instruction::Kind::SendBytes;
    made.bytes = bytes(hex);
    return made;
}

inline Instruction sendFrame(quint8 id, quint8 tp, quint8 mod, const char *payload)
{
    Instruction made;
    made.kind = Instruction::Kind::SendFrame;
    made.id = id;
    made.tp = tp;
    made.mod = mod;
    made.bytes = bytes(payload);
    return made;
}

inline Instruction hangUp(int ms)
{
    Instruction made;
    made.kind = Instruction::Kind::HangUp;
    made.ms = ms;
    return made;
}

inline boxsim::BenchOptions options(const boxsim::Faults &faults = {})
{
    boxsim::BenchOptions made;
    made.faults = faults;
    return made;
}

/// A bench that any script leads.
class LedBench {
public:
    LedBench(const boxsim::BenchOptions &benchOptions, std::unique_ptr<boxsim::Script> script)
        : bench(benchOptions, std::move(script))
    {
    }

    void receive(qint64 nowMs, const QByteArray &hex)
    {
        collect(nowMs, bench.receive(QByteArray::fromHex(hex), nowMs));
    }
    void carryOut(qint64 nowMs, const Instruction &given) { collect(nowMs, bench.carryOut(given, nowMs)); }
    void advance(qint64 nowMs) { collect(nowMs, bench.advance(nowMs)); }

    /// Passes the time from one due moment to the next.
    void runUntil(qint64 untilMs)
    {
        for (qint64 due = bench.dueMs(); due != boxsim::kNever && due <= untilMs; due = bench.dueMs())
            advance(due);
    }

    /// Handshake, and the state's frames acknowledged: the link is up, and at 1000 ms the line is quiet.
    void connectAndSettle()
    {
        receive(0, boxbench::kConnectRequest);
        receive(100, "9f 06 40 40 9f 03  9f 02 40 01 00 00 01 40 9f 03");
        runAcknowledging(101, 1000);
        taken();
        events();
    }

    /// Passes the time in steps of a millisecond, and acknowledges what is written.
    /// @return what was written
    QStringList runAcknowledging(qint64 fromMs, qint64 toMs)
    {
        QStringList all;
        for (qint64 now = fromMs; now <= toMs; ++now)
            all += acknowledge(now);
        return all + taken();
    }

    /// What happened to the line since the last call, each with its time: `12 9f 06`, `12 hang-up`.
    QStringList taken() { return std::exchange(m_line, {}); }

    /// What was told since the last call, each with its time.
    QStringList events() { return std::exchange(m_events, {}); }

    boxsim::Bench bench;

private:
    QStringList acknowledge(qint64 nowMs)
    {
        const QStringList written = taken();
        advance(nowMs);
        for (const QString &line : written) {
            const QString block = line.section(' ', 1);
            const QByteArray id = block.mid(6, 2).toLatin1();
            if (block.startsWith(QLatin1String("9f 02 ")))
                receive(nowMs, "9f 06 " + id + ' ' + id + " 9f 03");
        }
        return written;
    }

    void collect(qint64 nowMs, const boxsim::BenchOutput &output)
    {
        using Kind = boxsim::LineStep::Kind;
        for (const boxsim::LineStep &step : output.line) {
            const QString what = step.kind == Kind::Write ? QString::fromLatin1(step.bytes.toHex(' '))
                : step.kind == Kind::HangUp               ? QStringLiteral("hang-up")
                                                          : QStringLiteral("return");
            m_line.append(QString::number(nowMs) + ' ' + what);
        }
        for (const boxsim::Event &event : output.events)
            m_events.append(QString::number(event.timeMs) + ' ' + boxbench::text(event));
    }

    QStringList m_line;
    QStringList m_events;
};

/// A bench whose script the test writes down.
class ScriptedBench : public LedBench {
public:
    explicit ScriptedBench(const boxsim::BenchOptions &benchOptions = options())
        : ScriptedBench(benchOptions, std::make_unique<WrittenScript>())
    {
    }

    ScriptedBench(const boxsim::BenchOptions &benchOptions, std::unique_ptr<WrittenScript> written)
        : ScriptedBench(benchOptions, *written, std::move(written))
    {
    }

    WrittenScript &script;

private:
    ScriptedBench(const boxsim::BenchOptions &benchOptions, WrittenScript &seen,
                  std::unique_ptr<WrittenScript> &&written)
        : LedBench(benchOptions, std::move(written))
        , script(seen)
    {
    }
};

} // namespace scriptedbench
