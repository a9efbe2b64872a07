#include "bench.h"

#include <QtCore/QJsonObject>
#include <QtTest/QTest>

// Every command that is no climate button, from the monitor's process to the box's, which names it; and what
// the host's displays lead to.

namespace {

auto isCommand(const QString &name)
{
    return [name](const QJsonObject &line) {
        return line["event"] == QLatin1String("command") && line["name"] == name
            && !line["repeated"].toBool();
    };
}

} // namespace

class EndToEndCommands : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void everyCommandReachesTheBoxByItsName_data()
    {
        QTest::addColumn<QStringList>("calls");
        QTest::newRow("climate") << QStringList {"climate.requestClimateInfo", "climate.settings"};
        QTest::newRow("gauges") << QStringList {"gauges.requestGaugesInfo",
                                                "gauges.settings",
                                                "gauges.Gauge1_CenterGauge=true",
                                                "gauges.Gauge2_TopLeft=true",
                                                "gauges.Gauge3_TopRight=false",
                                                "gauges.Gauge4_BottomLeft=true",
                                                "gauges.Gauge5_BottomRight=false",
                                                "gauges.customControl1",
                                                "gauges.customControl2"};
        QTest::newRow("vehicle") << QStringList {"vehicle.requestVehicleInfo", "vehicle.settings",
                                                 "vehicle.checkEngine", "vehicle.customControl1",
                                                 "vehicle.customControl2"};
        QTest::newRow("parking") << QStringList {"parking.requestParkInfo", "parking.settings",
                                                 "parking.customControl1", "parking.customControl2"};
        QTest::newRow("player") << QStringList {"player.onMenuPress=1,2,159", "player.requestNormal",
                                                "player.syncGPSTimeToCanbus=34,12,21,11,2026,0"};
    }

    void everyCommandReachesTheBoxByItsName()
    {
        QFETCH(QStringList, calls);
        Bench bench;
        QVERIFY(bench.startBox());
        bench.startMonitor();
        QVERIFY(bench.waitForLink());
        // Until each category has shown an id of its own, its settings cannot be told from another's.
        const auto isLastOfAll = Bench::isSignal("updateMenuInfo");
        QVERIFY(QTest::qWaitFor([&] { return bench.monitor->hasObject(isLastOfAll); }, 20000));
        for (const QString &call : calls) {
            const auto isIt = isCommand(call.section('=', 0, 0));
            const int before = bench.box->count(isIt);
            bench.monitor->writeLine(call.toUtf8());
            QVERIFY2(QTest::qWaitFor([&] { return bench.box->count(isIt) > before; }, 20000),
                     qPrintable(call));
        }
        QCOMPARE(bench.monitor->count(Bench::isStatus(false)), 0);
    }

    void eachScreenOfTheHostAsksForItsData_data()
    {
        QTest::addColumn<QString>("screen");
        QTest::addColumn<QString>("command");
        QTest::newRow("gauges") << "gauges"
                                << "gauges.requestGaugesInfo";
        QTest::newRow("vehicle") << "vehicle"
                                 << "vehicle.requestVehicleInfo";
        QTest::newRow("climate") << "climate"
                                 << "climate.requestClimateInfo";
        QTest::newRow("parking") << "parking"
                                 << "parking.requestParkInfo";
        QTest::newRow("other") << "other"
                               << "player.requestNormal";
    }

    void eachScreenOfTheHostAsksForItsData()
    {
        QFETCH(QString, screen);
        QFETCH(QString, command);
        Bench bench;
        QVERIFY(bench.startBox());
        bench.startMonitor({"--screen", screen});
        const auto hasArrived = [&] { return bench.box->hasObject(isCommand(command)); };
        QVERIFY(QTest::qWaitFor(hasArrived, 30000));
        QVERIFY(QTest::qWaitFor([&] { return bench.monitor->hasObject(Bench::isSignal("displayShown")); },
                                20000));
    }

    void aLostLinkLeavesTheBoxsCameraView()
    {
        Bench bench;
        QVERIFY(bench.startBox());
        bench.startMonitor({"--call", "host.display=78"});
        QVERIFY(bench.waitForLink());
        const auto isShown = [](int display) {
            return [display](const QJsonObject &line) {
                return line["signal"] == QLatin1String("displayShown")
                    && line["args"].toObject()["display"] == display;
            };
        };
        QVERIFY(QTest::qWaitFor([&] { return bench.monitor->hasObject(isShown(78)); }, 20000));
        bench.box->signal(SIGSTOP);
        QVERIFY(QTest::qWaitFor([&] { return bench.monitor->hasObject(isShown(0)); }, 40000));
        QVector<int> events;
        for (const QJsonObject &line : bench.monitor->objects()) {
            if (line["signal"] == QLatin1String("eventReceived"))
                events.append(line["args"].toObject()["event"].toInt());
        }
        QCOMPARE(events, (QVector<int> {4, 36}));
        bench.box->signal(SIGCONT);
    }
};

QTEST_GUILESS_MAIN(EndToEndCommands)
#include "tst_e2e_commands.moc"
