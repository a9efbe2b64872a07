#include "bench.h"

#include <QtCore/QFileInfo>
#include <QtCore/QJsonObject>
#include <QtTest/QTest>

// How the two sides end, in the middle of traffic: by Ctrl-C, by the other side's end, by a box that falls
// silent.

namespace {

constexpr int kLossMs = 15000 + 900 + 5000; // the next connection check, its loss, and a slow machine

} // namespace

class EndToEndEnds : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void bothSidesEndByCtrlC_data()
    {
        QTest::addColumn<int>("number");
        QTest::newRow("Ctrl-C") << SIGINT;
        QTest::newRow("termination") << SIGTERM;
    }

    void bothSidesEndByCtrlC()
    {
        QFETCH(int, number);
        Bench bench;
        QVERIFY(bench.startBox());
        bench.startMonitor();
        QVERIFY(bench.waitForLink());
        bench.monitor->signal(number);
        QVERIFY(bench.monitor->endsWell());
        QCOMPARE(bench.monitor->complaints(), QList<QByteArray>());
        bench.box->signal(number);
        QVERIFY(bench.box->endsWell());
        QVERIFY(!QFileInfo(bench.link()).isSymLink());
    }

    void theHeadUnitEndsWithALineThatIsGone()
    {
        Bench bench;
        QVERIFY(bench.startBox());
        bench.startMonitor();
        QVERIFY(bench.waitForLink());
        bench.box->signal(SIGINT);
        QVERIFY(bench.box->endsWell());

        QCOMPARE(bench.monitor->exitStatus(), 1);
        QCOMPARE(bench.monitor->complaints(),
                 QList<QByteArray> {"canbus-monitor: " + bench.link().toUtf8()
                                    + " is gone: connect it and start canbus-monitor again"});
    }

    void aBoxThatFallsSilentIsALostLink()
    {
        Bench bench;
        QVERIFY(bench.startBox());
        bench.startMonitor();
        QVERIFY(bench.waitForLink());
        bench.box->signal(SIGSTOP);
        QVERIFY(bench.waitForLink(false, kLossMs));
        bench.box->signal(SIGCONT);
        // The handshake has begun anew, and brings the link back.
        const auto isUp = Bench::isStatus(true);
        QVERIFY(QTest::qWaitFor([&] { return bench.monitor->count(isUp) == 2; }, 20000));
    }

    void aBoxThatIsToldToFallSilentDoesNotAnswer()
    {
        Bench bench({"--silent-after", "1"});
        QVERIFY(bench.startBox());
        bench.startMonitor();
        const auto isRequest = [](const QJsonObject &line) {
            return line["name"] == QLatin1String("connection.request");
        };
        QVERIFY(QTest::qWaitFor([&] { return bench.box->count(isRequest) >= 4; }, 20000));
        QCOMPARE(bench.monitor->count(Bench::isStatus(true)), 0);
    }

    void theBoxOutlivesTheHeadUnit()
    {
        Bench bench;
        QVERIFY(bench.startBox());
        bench.startMonitor();
        QVERIFY(bench.waitForLink());
        bench.monitor->signal(SIGINT);
        QVERIFY(bench.monitor->endsWell());
        bench.startMonitor();
        QVERIFY(bench.waitForLink());
        const auto arrives = [&] {
            return bench.monitor->hasObject(Bench::isSignal("updateClimateMainTemp"));
        };
        QVERIFY(QTest::qWaitFor(arrives, 10000));
    }

    void manyExitsInTheMiddleOfTrafficAreAllClean()
    {
        Bench bench;
        QVERIFY(bench.startBox());
        for (int i = 0; i < 12; ++i) {
            bench.startMonitor();
            const auto inTraffic = [&] {
                return bench.monitor->hasObject(Bench::isSignal("updateClimateMainTemp"));
            };
            QVERIFY(QTest::qWaitFor(inTraffic, 20000));
            bench.monitor->signal(i % 2 == 0 ? SIGINT : SIGTERM);
            QVERIFY2(bench.monitor->endsWell(), QByteArray::number(i).constData());
            const QByteArray complaints = bench.monitor->complaints().join('\n');
            QVERIFY2(complaints.isEmpty(), complaints.constData());
        }
    }
};

QTEST_GUILESS_MAIN(EndToEndEnds)
#include "tst_e2e_ends.moc"
