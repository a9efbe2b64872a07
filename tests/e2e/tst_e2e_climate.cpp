#include "bench.h"

#include "drivenround.h"

#include <QtCore/QJsonDocument>
#include <QtCore/QJsonObject>
#include <QtCore/QSet>
#include <QtTest/QTest>

// The road both ways: the box's climate frames become signals, the UI's buttons become commands that the box
// names. Two processes, a pseudo-terminal, the real threads and timers.

namespace {

const QStringList kClimateSignals {
    "updateClimateType",
    "updateClimateTopText",
    "updateClimateComText",
    "updateClimateBtnStatus",
    "updateClimateMainTemp",
    "updateClimateSecondTemp",
    "updateClimateHeatSeat",
    "updateClimateCoolSeat",
    "updateClimateFanDirectValue",
    "updateClimateFanSpeedStatus",
    "updateClimateVentPosition",
    "updateClimateFanDirect",
    "updateClimateManualTempValue",
    "updateClimateSystem",
    "updateClimateDriverSeatPos",
};

struct Button {
    QByteArray call; ///< what the UI calls
    QString name;    ///< what the box reads
    bool press;
    int value;
};

const QVector<Button> kButtons {
    {"onOff", "onOff", true, 0},
    {"rearZone=true", "rearZone", true, 0},
    {"rearZone=false", "rearZone", false, 0},
    {"autoMainZoneTempPlus=true", "autoMainZoneTempPlus", true, 0},
    {"autoMainZoneTempPlus=false", "autoMainZoneTempPlus", false, 0},
    {"autoMainZoneTempMinus=true", "autoMainZoneTempMinus", true, 0},
    {"autoMainZoneTempMinus=false", "autoMainZoneTempMinus", false, 0},
    {"autoSecondZoneTempPlus=true", "autoSecondZoneTempPlus", true, 0},
    {"autoSecondZoneTempMinus=true", "autoSecondZoneTempMinus", true, 0},
    {"manualMainZoneTempUp=true", "manualMainZoneTempUp", true, 0},
    {"manualMainZoneTempDown=true", "manualMainZoneTempDown", true, 0},
    {"leftHeatedSeat", "leftHeatedSeat", true, 0},
    {"rightHeatedSeat", "rightHeatedSeat", true, 0},
    {"leftCooledSeat", "leftCooledSeat", true, 0},
    {"rightCooledSeat", "rightCooledSeat", true, 0},
    {"autoFanDirectValue=159", "autoFanDirectValue", true, 159},
    {"autoBtn", "autoBtn", true, 0},
    {"ventPos", "ventPos", true, 0},
    {"recircFresh", "recircFresh", true, 0},
    {"dualBtn", "dualBtn", true, 0},
    {"acBtn", "acBtn", true, 0},
    {"maxACBtn", "maxACBtn", true, 0},
    {"frontDefroster", "frontDefroster", true, 0},
    {"rearDefroster", "rearDefroster", true, 0},
    {"customControl1", "customControl1", true, 0},
    {"customControl2", "customControl2", true, 0},
    {"heatedSteerWheel", "heatedSteerWheel", true, 0},
    {"fanSpeedUp=true", "fanSpeedUp", true, 0},
    {"fanSpeedDown=false", "fanSpeedDown", false, 0},
    {"manualTemp=21", "manualTemp", true, 21},
    {"manualFanSpeed=255", "manualFanSpeed", true, 255},
};

auto isCommand(const Button &button)
{
    return [button](const QJsonObject &line) {
        return line["event"] == QLatin1String("command")
            && line["name"] == QStringLiteral("climate.") + button.name && line["press"] == button.press
            && line["value"] == button.value && !line["repeated"].toBool();
    };
}

} // namespace

class EndToEndClimate : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void everyItemReachesTheUi_data()
    {
        // The driver's seat is the one item that is not announced with the first frames: its flag is off.
        const QStringList atOnce = kClimateSignals.mid(0, kClimateSignals.size() - 1);
        QTest::addColumn<QStringList>("boxArguments");
        QTest::addColumn<QStringList>("names");
        QTest::newRow("frames in one piece") << QStringList() << kClimateSignals;
        QTest::newRow("frames byte by byte") << QStringList("--split") << atOnce;
        QTest::newRow("a box that is not ready at first") << QStringList({"--not-ready", "3"}) << atOnce;
    }

    void everyItemReachesTheUi()
    {
        QFETCH(QStringList, boxArguments);
        QFETCH(QStringList, names);
        Bench bench(boxArguments);
        QVERIFY(bench.startBox());
        bench.startMonitor();
        QVERIFY(bench.waitForLink());
        for (const QString &name : names) {
            const auto hasArrived = [&] { return bench.monitor->hasObject(Bench::isSignal(name)); };
            QVERIFY2(QTest::qWaitFor(hasArrived, 90000), qPrintable(name));
        }
    }

    void theTemperaturesAreThoseOfTheDrive()
    {
        QSet<QPair<int, int>> driven;
        for (qint64 ms = 0; ms < 120000; ms += drivenround::kStepMs) {
            const boxsim::ClimateState state = drivenround::driveAt(ms).climate;
            driven.insert({int(state.mainTemp), int(state.mainUnit)});
        }
        Bench bench;
        QVERIFY(bench.startBox());
        bench.startMonitor();
        const auto isTemperature = Bench::isSignal("updateClimateMainTemp");
        QVERIFY(QTest::qWaitFor([&] { return bench.monitor->count(isTemperature) >= 6; }, 60000));
        for (const QJsonObject &line : bench.monitor->objects()) {
            if (!isTemperature(line))
                continue;
            const QJsonObject args = line["args"].toObject();
            const QPair<int, int> reported {args["value"].toInt(), args["Unit"].toInt()};
            QVERIFY2(driven.contains(reported), QJsonDocument(line).toJson(QJsonDocument::Compact));
        }
    }

    void everyButtonReachesTheBoxByItsName()
    {
        Bench bench;
        QVERIFY(bench.startBox());
        bench.startMonitor();
        QVERIFY(bench.waitForLink());
        for (const Button &button : kButtons) {
            const int before = bench.box->count(isCommand(button));
            bench.monitor->writeLine("climate." + button.call);
            const auto hasArrived = [&] { return bench.box->count(isCommand(button)) > before; };
            QVERIFY2(QTest::qWaitFor(hasArrived, 20000), button.call.constData());
        }
        // Acknowledged, each of them: a single one given up would have taken the link down.
        QCOMPARE(bench.monitor->count(Bench::isStatus(false)), 0);
    }

    void aButtonComesBackAsAChangedState()
    {
        Bench bench;
        QVERIFY(bench.startBox());
        bench.startMonitor();
        QVERIFY(bench.waitForLink());
        bench.monitor->writeLine("climate.autoFanDirectValue=159");
        const auto isAnswer = [](const QJsonObject &line) {
            return line["signal"] == QLatin1String("updateClimateFanDirectValue")
                && line["args"].toObject()["value"] == 159;
        };
        QVERIFY(QTest::qWaitFor([&] { return bench.monitor->hasObject(isAnswer); }, 20000));
    }
};

QTEST_GUILESS_MAIN(EndToEndClimate)
#include "tst_e2e_climate.moc"
