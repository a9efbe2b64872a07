#pragma once

#include "boxsim/link/box.h"

#include "hexbytes.h"

#include <QtCore/QString>
#include <QtCore/QStringList>

#include <utility>

/// A simulated box on a test bench in virtual time: what it writes and tells is collected as text.
namespace boxbench {

constexpr char kConnectRequest[] = "9f 02 21 01 00 00 00 20 9f 03";
constexpr char kAckOfRequest[] = "9f 06 21 21 9f 03";
constexpr char kAcButton[] = "9f 02 52 93 00 12 01 00 d2 9f 03";

inline QString hexId(int id)
{
    return id < 0 ? QStringLiteral("none") : QString::number(id, 16);
}

inline QString text(const boxsim::Event &event)
{
    const QString reason = event.reason.isEmpty() ? QString() : QStringLiteral(": ") + event.reason;
    switch (event.kind) {
    case boxsim::Event::Kind::Command:
        return boxsim::toText(event.command) + QLatin1String(event.repeated ? " again" : "");
    case boxsim::Event::Kind::Ack:
        return QStringLiteral("ack ") + hexId(event.id) + reason;
    case boxsim::Event::Kind::Nack:
        return QStringLiteral("nack ") + hexId(event.id);
    case boxsim::Event::Kind::BadFrame:
        return QStringLiteral("bad frame") + reason;
    case boxsim::Event::Kind::Resend:
        return QStringLiteral("resend ") + hexId(event.id);
    case boxsim::Event::Kind::GiveUp:
        return QStringLiteral("give up ") + hexId(event.id);
    case boxsim::Event::Kind::LinkUp:
        return QStringLiteral("link up");
    case boxsim::Event::Kind::LinkDown:
        return QStringLiteral("link down");
    case boxsim::Event::Kind::Silent:
        return QStringLiteral("silent");
    case boxsim::Event::Kind::Speaking:
        return QStringLiteral("speaking");
    case boxsim::Event::Kind::Restart:
        return QStringLiteral("restart");
    case boxsim::Event::Kind::Fault:
        return QStringLiteral("fault ") + hexId(event.id) + reason;
    case boxsim::Event::Kind::Sent:
        return QStringLiteral("sent");
    case boxsim::Event::Kind::HangUp:
        return QStringLiteral("hang-up");
    case boxsim::Event::Kind::LineBack:
        return QStringLiteral("line back");
    case boxsim::Event::Kind::Note:
        return QStringLiteral("note") + reason;
    case boxsim::Event::Kind::Seed:
        return QStringLiteral("seed") + reason;
    }
    return {};
}

/// A box whose writes and events are collected until they are taken.
class Bench {
public:
    explicit Bench(const boxsim::BoxOptions &options = {}, const boxsim::Faults &faults = {})
        : box(options, {{}, {}, {}, faults})
    {
    }

    void setFaults(const boxsim::Faults &faults)
    {
        boxsim::BenchState state = box.state();
        state.faults = faults;
        box.setState(state);
    }

    void setReady(bool ready)
    {
        boxsim::BenchState state = box.state();
        state.ready = ready;
        box.setState(state);
    }

    void restart(qint64 nowMs) { collect(box.restart(nowMs)); }

    void receive(qint64 nowMs, const QByteArray &hex)
    {
        collect(box.receive(QByteArray::fromHex(hex), nowMs));
    }
    void advance(qint64 nowMs) { collect(box.advance(nowMs)); }

    /// Passes the time in steps of a millisecond.
    void run(qint64 fromMs, qint64 toMs)
    {
        for (qint64 now = fromMs; now <= toMs; ++now)
            advance(now);
    }

    /// What was written since the last call, a line for each block, without the time.
    QStringList writes() { return std::exchange(m_writes, {}); }

    QStringList events() { return std::exchange(m_events, {}); }

    /// Passes the time in steps of a millisecond, and acknowledges what was written and not taken yet.
    void runAcknowledging(qint64 fromMs, qint64 toMs)
    {
        int seen = 0;
        for (qint64 now = fromMs; now <= toMs; ++now) {
            const QStringList written = m_writes.mid(seen);
            seen = m_writes.size();
            advance(now);
            for (const QString &block : written) {
                const QByteArray id = block.mid(6, 2).toLatin1();
                if (block.startsWith(QLatin1String("9f 02 ")))
                    receive(now, "9f 06 " + id + ' ' + id + " 9f 03");
            }
        }
    }

    /// Handshake at 0 ms and whole state acknowledged: at 600 ms the line is quiet.
    void connectAndSettle()
    {
        receive(0, kConnectRequest);
        receive(100, "9f 06 40 40 9f 03");
        m_writes.clear();
        // The first frame of the state goes out with the answer to the check.
        receive(101, "9f 02 40 01 00 00 01 40 9f 03");
        runAcknowledging(102, 600);
        m_writes.clear();
        m_events.clear();
    }

    boxsim::Box box;

private:
    void collect(const boxsim::Output &output)
    {
        for (const QByteArray &block : output.writes)
            m_writes.append(QString::fromLatin1(block.toHex(' ')));
        for (const boxsim::Event &event : output.events)
            m_events.append(text(event));
    }

    QStringList m_writes;
    QStringList m_events;
};

inline QString wire(const char *hex)
{
    return QString::fromLatin1(bytes(hex).toHex(' '));
}

/// The climate state of a box that was told nothing: all zero, on the wire with this id.
inline QString zeroState(const char *id, const char *check)
{
    return wire((QByteArray("9f 02 ") + id + " 03 02 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 " + check
                 + " 9f 03")
                    .constData());
}

} // namespace boxbench
