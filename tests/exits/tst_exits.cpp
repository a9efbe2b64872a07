#include "exitplan.h"
#include "exitrun.h"

#include <QtCore/QEventLoop>
#include <QtTest/QTest>

#include <cstdio>
#include <memory>
#include <vector>

// A head unit leaves in the middle of traffic, in every way and at any moment: with its status, without a
// word, within a second.
//
// CANBUS_EXITS=N makes N exits, CANBUS_EXITS_SEED=N repeats the plans of an earlier run, CANBUS_EXITS_LANES=N
// runs so many head units at a time, CANBUS_EXITS_WRAPPER="COMMAND ..." runs each under a command, and
// CANBUS_EXITS_LIMIT_MS=N is how long each may take then.

namespace {

constexpr int kExits = 60;
constexpr int kLanes = 4;
constexpr int kProgress = 100;

int fromEnvironment(const char *name, int otherwise)
{
    return qEnvironmentVariableIsSet(name) ? qEnvironmentVariableIntValue(name) : otherwise;
}

ExitLimits limits()
{
    ExitLimits all;
    all.wrapper = qEnvironmentVariable("CANBUS_EXITS_WRAPPER").split(QLatin1Char(' '), Qt::SkipEmptyParts);
    all.endMs = fromEnvironment("CANBUS_EXITS_LIMIT_MS", all.endMs);
    all.exitMs = std::max(all.exitMs, 10 * all.endMs);
    return all;
}

/// Several head units at a time, one after the other in each lane.
class Exits : public QObject {
    Q_OBJECT

public:
    Exits(quint32 seed, int count)
        : m_seed(seed)
        , m_count(count)
        , m_plans(seed)
    {
    }

    void run()
    {
        const int lanes = fromEnvironment("CANBUS_EXITS_LANES", kLanes);
        for (int lane = 0; lane < lanes; ++lane)
            startNext();
        QEventLoop loop;
        connect(this, &Exits::allEnded, &loop, &QEventLoop::quit);
        loop.exec();
    }

    int bad() const { return m_bad; }
    int longestMs() const { return m_longestMs; }

    /// How often each value was planned, as "name=value".
    const QMap<QString, int> &planned() const { return m_planned; }

Q_SIGNALS:
    void allEnded();

private:
    void startNext()
    {
        if (m_started == m_count)
            return;
        const int number = m_started++;
        const ExitPlan plan = m_plans.next();
        for (const QString &argument : argumentsOf(plan))
            ++m_planned[argument];
        auto *run = new ExitRun(plan, limits(), m_seed + quint32(number));
        run->setParent(this);
        connect(run, &ExitRun::ended, this, [this, run, plan, number] { onEnded(run, plan, number); });
    }

    void onEnded(ExitRun *run, const ExitPlan &plan, int number)
    {
        m_longestMs = std::max(m_longestMs, run->endMs());
        if (!run->complaints().isEmpty()) {
            ++m_bad;
            std::printf("exit %d, %s:\n    %s\n", number, qPrintable(argumentsOf(plan).join(' ')),
                        qPrintable(run->complaints().join("\n    ")));
        }
        run->deleteLater();
        if (++m_ended % kProgress == 0)
            std::printf("exits: %d of %d, %d bad, longest %d ms\n", m_ended, m_count, m_bad, m_longestMs);
        std::fflush(stdout);
        startNext();
        if (m_ended == m_count)
            Q_EMIT allEnded();
    }

    const quint32 m_seed;
    const int m_count;
    ExitPlans m_plans;
    int m_started = 0;
    int m_ended = 0;
    int m_bad = 0;
    int m_longestMs = 0;
    QMap<QString, int> m_planned;
};

} // namespace

class TestExits : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void noticesABadExit_data()
    {
        QTest::addColumn<QString>("fault");
        QTest::addColumn<QString>("complaint");
        QTest::addColumn<QString>("when");
        const auto addRow = [](const char *name, const char *fault, const char *complaint,
                               const char *when = "up") {
            QTest::newRow(name) << fault << complaint << when;
        };
        addRow("none", "", "");
        addRow("none, the line was lost", "", "", "hungup");
        addRow("a crash", "crash", "was ended by signal 11");
        addRow("another status", "status", "has ended with status 7");
        addRow("a message", "message", "message: QThread: Destroyed while still running");
        addRow("a line lost that is there", "alarm", "handleError() -- 9");
        addRow("a loss told again and again", "alarms", "handleError() -- 9", "hungup");
        addRow("a word too many", "talk", "has said: ready up exit goodbye ");
        addRow("a late end", "slow", " ms from its exit to its end");
        addRow("no end", "stuck", "has not ended");
    }

    void noticesABadExit()
    {
        QFETCH(QString, fault);
        QFETCH(QString, complaint);
        QFETCH(QString, when);
        const ExitPlan plan {{"protocol", "leaked"}, {"init", "once"}, {"when", when},  {"end", "exit"},
                             {"status", "0"},        {"after", "20"},  {"fault", fault}};
        ExitRun run(plan, limits(), 1);
        bool hasEnded = false;
        connect(&run, &ExitRun::ended, this, [&hasEnded] { hasEnded = true; });
        QTRY_VERIFY_WITH_TIMEOUT(hasEnded, 60000);
        const QString all = run.complaints().join(QLatin1Char('\n'));
        QVERIFY2(complaint.isEmpty() ? all.isEmpty() : all.contains(complaint), qPrintable(all));
    }

    void everyExitInTrafficIsClean()
    {
        const int count = fromEnvironment("CANBUS_EXITS", kExits);
        const quint32 seed = qEnvironmentVariableIsSet("CANBUS_EXITS_SEED")
            ? qEnvironmentVariable("CANBUS_EXITS_SEED").toUInt()
            : std::random_device()();
        std::printf("exits: %d, seed %u\n", count, seed);
        Exits exits(seed, count);
        exits.run();
        std::printf("exits: %d, %d bad, longest %d ms, seed %u\n", count, exits.bad(), exits.longestMs(),
                    seed);
        QCOMPARE(exits.bad(), 0);
        for (auto it = ExitPlans::choices().begin(); count >= kExits && it != ExitPlans::choices().end();
             ++it) {
            for (const QString &value : it.value())
                QVERIFY2(exits.planned()[it.key() + '=' + value] > 0, qPrintable(it.key() + '=' + value));
        }
    }
};

QTEST_GUILESS_MAIN(TestExits)
#include "tst_exits.moc"
