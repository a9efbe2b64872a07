#include "announcements.h"
#include "hexbytes.h"
#include "logrecorder.h"
#include "player/canbusplayer.h"
#include "velclimategroupcmd.h"
#include "velgaugesgroupcmd.h"
#include "velparkinggroupcmd.h"
#include "velvehiclegroupcmd.h"

#include <QtTest/QTest>

#include <memory>

using namespace canbus;

namespace {

using Slot = void (CanBusPlayer::*)(QByteArray, QByteArray);

/// A payload that every decoder takes, and another one that differs from it in every item: "!A", "B" and
/// "CDEFGHIJKLMNO" as texts.
const QByteArray kPayload = bytes("21 41 00 42 00 43 44 45 46 47 48 49 4a 4b 4c 4d 4e 4f 00");
const QByteArray kFormerPayload = bytes("12 51 00 52 00 73 74 75 76 77 78 79 7a 7b 7c 7d 7e 7f 00");

/// All four groups, with what they announce: "climate updateClimateType(33)".
class Groups {
public:
    /// Every decoder has had the former payload, so that the next one is news to whichever gets it.
    Groups()
    {
        takeFormerPayload();
        climate.take();
        gauges.take();
        vehicle.take();
        parking.take();
    }

    /// What all groups have announced since the last call.
    QStringList take() { return climate.take() + gauges.take() + vehicle.take() + parking.take(); }

private:
    static void takeFormerPayload()
    {
        VelClimateGroupCmd::instance()->onClimateType(kFormerPayload);
        VelClimateGroupCmd::instance()->onClimateCustomLabel(kFormerPayload);
        VelClimateGroupCmd::instance()->onClimateData(kFormerPayload);
        VelGaugesGroupCmd::instance()->handleGaugeType(kFormerPayload);
        VelGaugesGroupCmd::instance()->handleGaugeCustomLabel(kFormerPayload);
        VelGaugesGroupCmd::instance()->handleGaugeScaleAndCenterText(kFormerPayload);
        VelGaugesGroupCmd::instance()->handleGaugeTopLeft_RightText(kFormerPayload);
        VelGaugesGroupCmd::instance()->handleGaugeBottomLeft_RightText(kFormerPayload);
        VelGaugesGroupCmd::instance()->handleGaugeStateValue(kFormerPayload);
        VelVehicleGroupCmd::instance()->onVehicleTopText(kFormerPayload);
        VelVehicleGroupCmd::instance()->onVehicleCustomLabel(kFormerPayload);
        VelVehicleGroupCmd::instance()->onVehicleData(kFormerPayload);
        VelParkingGroupCmd::instance()->onParkTopText(kFormerPayload);
        VelParkingGroupCmd::instance()->onParkCustomLabel(kFormerPayload);
        VelParkingGroupCmd::instance()->onParkData(kFormerPayload);
    }

    Announcements climate {VelClimateGroupCmd::instance()};
    Announcements gauges {VelGaugesGroupCmd::instance()};
    Announcements vehicle {VelVehicleGroupCmd::instance()};
    Announcements parking {VelParkingGroupCmd::instance()};
};

/// The announcement that each decoder makes of the payload, and no other decoder.
const QStringList kMarks {
    "updateClimateType(33)",
    "updateClimateComText(['!A', 'B', 'CDEFGHIJKLMNO'])",
    "updateClimateMainTemp(8513, 0)",
    "updateGaugeType({0: true, 1: false, 2: false, 3: false})",
    "updateGaugeComText(['!A', 'B', 'CDEFGHIJKLMNO'])",
    "updateGaugeScale(['!A', '', 'CDE', 'FGH', 'IJK', 'LMN'])",
    "updateGaugeTopLRText(['!A', 'B', 'CDEFGHIJKLMNO'])",
    "updateGaugeBottomLRText(['!A', 'B', 'CDEFGHIJKLMNO'])",
    "updateGaugeZeroPos([33, 0, 68, 70, 72])",
    "updateVehicleTopText('!A')",
    "updateVehicleComText(['!A', 'B', 'CDEFGHIJKLMNO'])",
    "updateVehicleDoorStatus([true, false, false, false])",
    "updateParkTopText('!A')",
    "updateParkComText(['!A', 'B', 'CDEFGHIJKLMNO'])",
    "updateParkSensorFront([33, 65, 0, 66])",
};

QStringList marksIn(const QStringList &announcements)
{
    QStringList found;
    for (const QString &announcement : announcements) {
        if (kMarks.contains(announcement))
            found += announcement;
    }
    return found;
}

} // namespace

Q_DECLARE_METATYPE(Slot)

/// Which decoder gets the reports of the vehicle's four categories.
class TestRouting : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init() { m_log = std::make_unique<LogRecorder>(); }
    void cleanup() { m_log.reset(); }

    void handsAReportToTheDecoderOfItsSubType_data();
    void handsAReportToTheDecoderOfItsSubType();
    void refusesOtherSubTypes_data();
    void refusesOtherSubTypes();
    void leavesAShortPayloadToTheDecoder();
    void handsOnTheSamePayloadEachTime();
    void logsTheSizesInTheNameOfTheSlot_data();
    void logsTheSizesInTheNameOfTheSlot();

private:
    std::unique_ptr<LogRecorder> m_log;
};

void TestRouting::handsAReportToTheDecoderOfItsSubType_data()
{
    QTest::addColumn<Slot>("slot");
    QTest::addColumn<QByteArray>("subType");
    QTest::addColumn<QString>("mark");
    const auto row = [](const char *name, Slot slot, const char *subType, int mark) {
        QTest::newRow(name) << slot << bytes(subType) << kMarks.at(mark);
    };
    row("climate 0 is the type", &CanBusPlayer::onClimateInfo, "00", 0);
    row("climate 1 is the labels", &CanBusPlayer::onClimateInfo, "01", 1);
    row("climate 2 is the data", &CanBusPlayer::onClimateInfo, "02", 2);
    row("gauges 0 is the type", &CanBusPlayer::onGaugesInfo, "00", 3);
    row("gauges 1 is the labels", &CanBusPlayer::onGaugesInfo, "01", 4);
    row("gauges 2 is the scale", &CanBusPlayer::onGaugesInfo, "02", 5);
    row("gauges 3 is the top texts", &CanBusPlayer::onGaugesInfo, "03", 6);
    row("gauges 4 is the bottom texts", &CanBusPlayer::onGaugesInfo, "04", 7);
    row("gauges 5 is the state", &CanBusPlayer::onGaugesInfo, "05", 8);
    row("vehicle 0 is the title", &CanBusPlayer::onVehicleInfo, "00", 9);
    row("vehicle 1 is the labels", &CanBusPlayer::onVehicleInfo, "01", 10);
    row("vehicle 2 is the data", &CanBusPlayer::onVehicleInfo, "02", 11);
    row("parking 0 is the title", &CanBusPlayer::onParingAssistInfo, "00", 12);
    row("parking 1 is the labels", &CanBusPlayer::onParingAssistInfo, "01", 13);
    row("parking 2 is the data", &CanBusPlayer::onParingAssistInfo, "02", 14);
    row("an empty sub-type of climate reads as 0", &CanBusPlayer::onClimateInfo, "", 0);
    row("an empty sub-type of the gauges reads as 0", &CanBusPlayer::onGaugesInfo, "", 3);
    row("an empty sub-type of the vehicle reads as 0", &CanBusPlayer::onVehicleInfo, "", 9);
    row("an empty sub-type of parking reads as 0", &CanBusPlayer::onParingAssistInfo, "", 12);
    row("a sub-type of two bytes counts by its first", &CanBusPlayer::onGaugesInfo, "03 ff", 6);
}

void TestRouting::handsAReportToTheDecoderOfItsSubType()
{
    QFETCH(const Slot, slot);
    QFETCH(const QByteArray, subType);
    QFETCH(const QString, mark);
    CanBusPlayer player;
    Groups groups;

    (player.*slot)(subType, kPayload);

    QCOMPARE(marksIn(groups.take()), QStringList {mark});
    QCOMPARE(m_log->messages("[ERR]"), QStringList());
}

void TestRouting::refusesOtherSubTypes_data()
{
    QTest::addColumn<Slot>("slot");
    QTest::addColumn<QByteArray>("subType");
    const auto rows = [](const char *category, Slot slot, const QByteArray &subTypes) {
        for (const char subType : subTypes)
            QTest::addRow("%s %d", category, int(quint8(subType))) << slot << QByteArray(1, subType);
    };
    rows("climate", &CanBusPlayer::onClimateInfo, bytes("03 04 05 06 7f 80 ff"));
    rows("gauges", &CanBusPlayer::onGaugesInfo, bytes("06 07 7f 80 ff"));
    rows("vehicle", &CanBusPlayer::onVehicleInfo, bytes("03 04 05 06 7f 80 ff"));
    rows("parking", &CanBusPlayer::onParingAssistInfo, bytes("03 04 05 06 7f 80 ff"));
}

void TestRouting::refusesOtherSubTypes()
{
    QFETCH(const Slot, slot);
    QFETCH(const QByteArray, subType);
    CanBusPlayer player;
    Groups groups;
    m_log->clear();

    (player.*slot)(subType, kPayload);

    QCOMPARE(groups.take(), QStringList());
    QCOMPARE(m_log->messages("[DBG]"), QStringList {"1 19"});
    QCOMPARE(m_log->messages("[ERR]"), QStringList {"data is error"});
    QCOMPARE(m_log->lines().constLast().type, QtCriticalMsg);
}

void TestRouting::leavesAShortPayloadToTheDecoder()
{
    CanBusPlayer player;
    Groups groups;
    m_log->clear();

    player.onParingAssistInfo(bytes("02"), kPayload.left(16));

    QCOMPARE(groups.take(), QStringList());
    QCOMPARE(m_log->messages("[DBG]"), QStringList {"1 16"});
    QCOMPARE(m_log->messages("[ERR]"), QStringList {"data is error"});
    QVERIFY(m_log->lines().constLast().text.contains("VelParkingGroupCmd::onParkData("));
}

void TestRouting::handsOnTheSamePayloadEachTime()
{
    CanBusPlayer player;
    Groups groups;
    // The type of the gauges is announced with every report: the player keeps none of them back.
    player.onGaugesInfo(bytes("00"), kPayload);
    player.onGaugesInfo(bytes("00"), kPayload);
    QCOMPARE(marksIn(groups.take()), (QStringList {kMarks.at(3), kMarks.at(3)}));
}

void TestRouting::logsTheSizesInTheNameOfTheSlot_data()
{
    QTest::addColumn<Slot>("slot");
    QTest::addColumn<QByteArray>("subType");
    QTest::addColumn<QString>("signature");
    QTest::addColumn<QString>("message");
    const auto row = [](const char *name, Slot slot, const char *subType, const char *message) {
        QTest::newRow(name) << slot << bytes(subType)
                            << QStringLiteral(" void canbus::CanBusPlayer::%1(QByteArray, QByteArray) ")
                                   .arg(QLatin1String(name))
                            << message;
    };
    row("onClimateInfo", &CanBusPlayer::onClimateInfo, "00", "1 19");
    row("onGaugesInfo", &CanBusPlayer::onGaugesInfo, "05", "1 19");
    row("onVehicleInfo", &CanBusPlayer::onVehicleInfo, "02 03", "2 19");
    row("onParingAssistInfo", &CanBusPlayer::onParingAssistInfo, "", "0 19");
}

void TestRouting::logsTheSizesInTheNameOfTheSlot()
{
    QFETCH(const Slot, slot);
    QFETCH(const QByteArray, subType);
    QFETCH(const QString, signature);
    QFETCH(const QString, message);
    CanBusPlayer player;
    m_log->clear();

    (player.*slot)(subType, kPayload);

    QCOMPARE(m_log->messages("[DBG]").value(0), message);
    QVERIFY2(m_log->lines().at(0).text.contains(signature), qPrintable(m_log->lines().at(0).text));
}

QTEST_GUILESS_MAIN(TestRouting)
#include "tst_routing.moc"
