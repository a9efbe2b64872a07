#include "velclimategroupcmd.h"

#include "player/canbusplayer.h"

#include <announcements.h>
#include <hexbytes.h>
#include <logrecorder.h>

#include <QtCore/QRegularExpression>
#include <QtTest/QTest>

using namespace canbus;

namespace {

const QByteArray kZeros = bytes("00 00 00 00 00 00 00 00 00 00 00 00 00 00 00");

/// A payload of zeros but for one byte.
QByteArray with(int index, int value)
{
    QByteArray data = kZeros;
    data[index] = char(value);
    return data;
}

/// The signal of the buttons with these states, each a digit.
QString announcedButtons(const QString &states)
{
    const QStringList digits = states.split(QString(), Qt::SkipEmptyParts);
    return QStringLiteral("updateClimateBtnStatus([%1])").arg(digits.join(QStringLiteral(", ")));
}

} // namespace

/// The climate state, sub-type 2: each item by its bits.
class TestClimateStatus : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void announcesEveryItemOfTheFirstPayload();
    void announcesTheFlagsFirst();
    void announcesNothingThatStaysTheSame();
    void refusesAShortPayload_data();
    void refusesAShortPayload();
    void takesALongerPayload();
    void readsEachItem_data();
    void readsEachItem();
    void readsSeatLevelsAndVentPosition_data();
    void readsSeatLevelsAndVentPosition();
    void readsEachButton_data();
    void readsEachButton();
    void clearsTheFlagsAgain();
    void announcesAllChangesInOrder();
    void routesBySubType();
    void refusesOtherSubTypes_data();
    void refusesOtherSubTypes();
};

void TestClimateStatus::announcesEveryItemOfTheFirstPayload()
{
    VelClimateGroupCmd group;
    Announcements seen(&group);
    group.onClimateData(kZeros);
    QCOMPARE(seen.take(),
             (QStringList {
                 "updateClimateBtnStatus([0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0])",
                 "updateClimateMainTemp(0, 0)",
                 "updateClimateSecondTemp(0, 0)",
                 "updateClimateHeatSeat(0, 0)",
                 "updateClimateCoolSeat(0, 0)",
                 "updateClimateFanDirectValue(0)",
                 "updateClimateFanSpeedStatus(0)",
                 "updateClimateVentPosition(0)",
                 "updateClimateFanDirect(0)",
                 "updateClimateManualTempValue(0)",
             }));
}

void TestClimateStatus::announcesTheFlagsFirst()
{
    VelClimateGroupCmd group;
    Announcements seen(&group);
    group.onClimateData(with(13, 0x30));
    const QStringList announced = seen.take();
    QCOMPARE(announced.size(), 12);
    QCOMPARE(announced.mid(0, 3),
             (QStringList {
                 "updateClimateSystem(true)", "updateClimateDriverSeatPos(true)",
                 "updateClimateBtnStatus([0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0])"}));
}

void TestClimateStatus::announcesNothingThatStaysTheSame()
{
    VelClimateGroupCmd group;
    Announcements seen(&group);
    const QByteArray data = bytes("01 2c 00 d7 9f ff 34 56 9f 9f 7f ff ff 3f 9f");
    group.onClimateData(data);
    QCOMPARE(seen.take().size(), 12);
    LogRecorder log;
    group.onClimateData(data);
    QCOMPARE(seen.take(), QStringList());
    QVERIFY(log.lines().isEmpty());
}

void TestClimateStatus::refusesAShortPayload_data()
{
    QTest::addColumn<QByteArray>("data");
    QTest::newRow("14 bytes") << bytes("ff ff ff ff ff ff ff ff ff ff ff ff ff ff");
    QTest::newRow("1 byte") << bytes("ff");
    QTest::newRow("none") << QByteArray();
}

void TestClimateStatus::refusesAShortPayload()
{
    QFETCH(QByteArray, data);
    VelClimateGroupCmd group;
    group.onClimateData(kZeros);
    Announcements seen(&group);
    LogRecorder log;
    group.onClimateData(data);
    QCOMPARE(seen.take(), QStringList());
    QCOMPARE(log.lines().size(), 1);
    QCOMPARE(log.messages("[ERR]"), QStringList {"data is error"});
    QVERIFY(log.lines().at(0).text.contains(" void canbus::VelClimateGroupCmd::onClimateData(QByteArray) "));
    // Nothing was stored of it either.
    group.onClimateData(kZeros);
    QCOMPARE(seen.take(), QStringList());
}

void TestClimateStatus::takesALongerPayload()
{
    VelClimateGroupCmd group;
    Announcements seen(&group);
    LogRecorder log;
    group.onClimateData(kZeros + bytes("ff ff ff"));
    QCOMPARE(seen.take().size(), 10);
    QCOMPARE(log.messages("[ERR]"), QStringList());
    group.onClimateData(kZeros);
    QCOMPARE(seen.take(), QStringList());
}

void TestClimateStatus::readsEachItem_data()
{
    QTest::addColumn<int>("index");
    QTest::addColumn<int>("value");
    QTest::addColumn<QStringList>("announced");
    const auto row = [](const char *name, int index, int value, const QStringList &announced) {
        QTest::newRow(name) << index << value << announced;
    };
    row("main temperature, high byte", 0, 0x9f, {"updateClimateMainTemp(40704, 0)"});
    row("main temperature, low byte", 1, 0xd7, {"updateClimateMainTemp(215, 0)"});
    row("second temperature, high byte", 2, 0x01, {"updateClimateSecondTemp(256, 0)"});
    row("second temperature, low byte", 3, 0xff, {"updateClimateSecondTemp(255, 0)"});
    row("main unit 1", 4, 0x40, {"updateClimateMainTemp(0, 1)"});
    row("main unit 2", 4, 0x80, {"updateClimateMainTemp(0, 2)"});
    row("main unit 3", 4, 0xc0, {"updateClimateMainTemp(0, 3)"});
    row("second unit 1", 4, 0x10, {"updateClimateSecondTemp(0, 1)"});
    row("second unit 2", 4, 0x20, {"updateClimateSecondTemp(0, 2)"});
    row("second unit 3", 4, 0x30, {"updateClimateSecondTemp(0, 3)"});
    row("left heated seat", 6, 0x50, {"updateClimateHeatSeat(5, 0)"});
    row("right heated seat", 6, 0x05, {"updateClimateHeatSeat(0, 5)"});
    row("left cooled seat", 7, 0x80, {"updateClimateCoolSeat(8, 0)"});
    row("right cooled seat", 7, 0x08, {"updateClimateCoolSeat(0, 8)"});
    row("fan direct value", 8, 0x9f, {"updateClimateFanDirectValue(159)"});
    row("fan direct value, greatest", 8, 0xff, {"updateClimateFanDirectValue(255)"});
    row("fan speed status 1", 9, 0x40, {"updateClimateFanSpeedStatus(1)"});
    row("fan speed status 2", 9, 0x80, {"updateClimateFanSpeedStatus(2)"});
    row("fan speed status 3", 9, 0xc0, {"updateClimateFanSpeedStatus(3)"});
    row("vent position", 10, 0x70, {"updateClimateVentPosition(7)"});
    row("fan direct 1", 12, 0x01, {"updateClimateFanDirect(1)"});
    row("fan direct 2", 12, 0x02, {"updateClimateFanDirect(2)"});
    row("fan direct 3", 12, 0x03, {"updateClimateFanDirect(3)"});
    row("driver seat position", 13, 0x20, {"updateClimateDriverSeatPos(true)"});
    row("system state", 13, 0x10, {"updateClimateSystem(true)"});
    row("the two highest bits beside the flags mean nothing", 13, 0xc0, {});
    row("manual temperature value", 14, 0x21, {"updateClimateManualTempValue(33)"});
    row("manual temperature value, greatest", 14, 0xff, {"updateClimateManualTempValue(255)"});
}

void TestClimateStatus::readsEachItem()
{
    QFETCH(int, index);
    QFETCH(int, value);
    VelClimateGroupCmd group;
    group.onClimateData(kZeros);
    Announcements seen(&group);
    group.onClimateData(with(index, value));
    QTEST(seen.take(), "announced");
}

void TestClimateStatus::readsSeatLevelsAndVentPosition_data()
{
    QTest::addColumn<int>("value");
    QTest::addColumn<int>("state");
    const int states[] = {0, 1, 2, 3, 4, 5, 6, 7, 8, 0, 0, 0, 0, 0, 0, 0};
    for (int value = 0; value < 16; ++value)
        QTest::addRow("%d reads as %d", value, states[value]) << value << states[value];
}

void TestClimateStatus::readsSeatLevelsAndVentPosition()
{
    QFETCH(int, value);
    QFETCH(int, state);
    VelClimateGroupCmd group;
    Announcements seen(&group);
    // The neighbouring half byte is 1, and does not count.
    group.onClimateHeatSeat(with(6, value * 0x10 + 1));
    group.onClimateCoolSeat(with(7, value * 0x10 + 1));
    group.onClimateVentPosition(with(10, value * 0x10 + 1));
    QCOMPARE(seen.take(),
             (QStringList {QStringLiteral("updateClimateHeatSeat(%1, 1)").arg(state),
                           QStringLiteral("updateClimateCoolSeat(%1, 1)").arg(state),
                           QStringLiteral("updateClimateVentPosition(%1)").arg(state)}));
    VelClimateGroupCmd other;
    Announcements seenOther(&other);
    other.onClimateHeatSeat(with(6, value + 0x10));
    other.onClimateCoolSeat(with(7, value + 0x10));
    QCOMPARE(seenOther.take(),
             (QStringList {QStringLiteral("updateClimateHeatSeat(1, %1)").arg(state),
                           QStringLiteral("updateClimateCoolSeat(1, %1)").arg(state)}));
}

void TestClimateStatus::readsEachButton_data()
{
    QTest::addColumn<int>("index");
    QTest::addColumn<int>("low");
    QTest::addColumn<int>("high");
    QTest::addColumn<QString>("states");
    const auto row = [](int index, int low, int high, const char *states) {
        QTest::addRow("byte %d, bits %02x and %02x", index, high, low) << index << low << high << states;
    };
    row(4, 0x04, 0x08, "30000000000000000000");
    row(4, 0x01, 0x02, "03000000000000000000");
    row(5, 0x40, 0x80, "00300000000000000000");
    row(5, 0x10, 0x20, "00030000000000000000");
    row(5, 0x04, 0x08, "00003000000000000000");
    row(5, 0x01, 0x02, "00000300000000000000");
    row(9, 0x10, 0x20, "00000030000000000000");
    row(9, 0x04, 0x08, "00000003000000000000");
    row(9, 0x01, 0x02, "00000000300000000000");
    row(10, 0x04, 0x08, "00000000030000000000");
    row(10, 0x01, 0x02, "00000000003000000000");
    row(11, 0x40, 0x80, "00000000000300000000");
    row(11, 0x10, 0x20, "00000000000030000000");
    row(11, 0x04, 0x08, "00000000000003000000");
    row(11, 0x01, 0x02, "00000000000000300000");
    row(12, 0x40, 0x80, "00000000000000030000");
    row(12, 0x10, 0x20, "00000000000000003000");
    row(12, 0x04, 0x08, "00000000000000000300");
    // The other way round than all others.
    row(13, 0x01, 0x02, "00000000000000000030");
    row(13, 0x04, 0x08, "00000000000000000003");
}

void TestClimateStatus::readsEachButton()
{
    QFETCH(int, index);
    QFETCH(int, low);
    QFETCH(int, high);
    QFETCH(QString, states);
    VelClimateGroupCmd group;
    group.onClimateData(kZeros);
    Announcements seen(&group);
    group.onClimateData(with(index, low + high));
    QCOMPARE(seen.take(), QStringList {announcedButtons(states)});
    group.onClimateData(with(index, high));
    QCOMPARE(seen.take(), QStringList {announcedButtons(QString(states).replace('3', '2'))});
    group.onClimateData(with(index, low));
    QCOMPARE(seen.take(), QStringList {announcedButtons(QString(states).replace('3', '1'))});
}

void TestClimateStatus::clearsTheFlagsAgain()
{
    VelClimateGroupCmd group;
    group.onClimateData(with(13, 0x30));
    Announcements seen(&group);
    group.onClimateData(with(13, 0x20));
    QCOMPARE(seen.take(), QStringList {"updateClimateSystem(false)"});
    group.onClimateData(kZeros);
    QCOMPARE(seen.take(), QStringList {"updateClimateDriverSeatPos(false)"});
}

void TestClimateStatus::announcesAllChangesInOrder()
{
    VelClimateGroupCmd group;
    group.onClimateData(kZeros);
    Announcements seen(&group);
    group.onClimateData(bytes("01 2c ff ff 9b 1b 9f 47 64 b9 5a c6 1d 3e c8"));
    QCOMPARE(seen.take(),
             (QStringList {
                 "updateClimateSystem(true)",
                 "updateClimateDriverSeatPos(true)",
                 "updateClimateBtnStatus([2, 3, 0, 1, 2, 3, 3, 2, 1, 2, 2, 3, 0, 1, 2, 0, 1, 3, 2, 3])",
                 "updateClimateMainTemp(300, 2)",
                 "updateClimateSecondTemp(65535, 1)",
                 // Both halves of 9f are out of range: the heated seats stay 0.
                 "updateClimateCoolSeat(4, 7)",
                 "updateClimateFanDirectValue(100)",
                 "updateClimateFanSpeedStatus(2)",
                 "updateClimateVentPosition(5)",
                 "updateClimateFanDirect(1)",
                 "updateClimateManualTempValue(200)",
             }));
}

void TestClimateStatus::routesBySubType()
{
    CanBusPlayer player;
    VelClimateGroupCmd *const group = VelClimateGroupCmd::instance();
    QCOMPARE(VelClimateGroupCmd::instance(), group);
    Announcements seen(group);
    LogRecorder log;
    player.onClimateInfo(bytes("00"), bytes("05 41 00"));
    QCOMPARE(seen.take(), (QStringList {"updateClimateType(5)", "updateClimateTopText('A')"}));
    player.onClimateInfo(bytes("01"), bytes("41 00 42 00"));
    QCOMPARE(seen.take(), QStringList {"updateClimateComText(['A', 'B'])"});
    player.onClimateInfo(bytes("02"), kZeros);
    QCOMPARE(seen.take().size(), 10);
    QCOMPARE(log.messages("[ERR]"), QStringList());
    const QString routing =
        QStringLiteral(" void canbus::CanBusPlayer::onClimateInfo(QByteArray, QByteArray) ");
    QVERIFY(log.lines().at(0).text.contains(routing));
    QVERIFY(log.lines().at(0).text.endsWith(QLatin1String(" -- 1 3")));
    QCOMPARE(log.messages("[DBG]").filter(QRegularExpression(QStringLiteral("^1 (3|4|15)$"))),
             (QStringList {"1 3", "1 4", "1 15"}));
}

void TestClimateStatus::refusesOtherSubTypes_data()
{
    QTest::addColumn<QByteArray>("subType");
    QTest::newRow("3") << bytes("03");
    QTest::newRow("4") << bytes("04");
    QTest::newRow("5") << bytes("05");
    QTest::newRow("80") << bytes("80");
    QTest::newRow("9f") << bytes("9f");
    QTest::newRow("ff") << bytes("ff");
}

void TestClimateStatus::refusesOtherSubTypes()
{
    QFETCH(QByteArray, subType);
    CanBusPlayer player;
    Announcements seen(VelClimateGroupCmd::instance());
    LogRecorder log;
    player.onClimateInfo(subType, bytes("77 58 00 77 58 00 77 58 00 77 58 00 77 58 00"));
    QCOMPARE(seen.take(), QStringList());
    QCOMPARE(log.messages("[DBG]"), QStringList {"1 15"});
    QCOMPARE(log.messages("[ERR]"), QStringList {"data is error"});
    for (const LogLine &line : log.lines())
        QVERIFY(line.text.contains(" void canbus::CanBusPlayer::onClimateInfo(QByteArray, QByteArray) "));
}

QTEST_GUILESS_MAIN(TestClimateStatus)
#include "tst_velclimategroupcmd_status.moc"
