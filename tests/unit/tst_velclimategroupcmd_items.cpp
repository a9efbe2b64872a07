#include "velclimategroupcmd.h"

#include <announcements.h>
#include <hexbytes.h>
#include <logrecorder.h>

#include <QtTest/QSignalSpy>
#include <QtTest/QTest>

using namespace canbus;

namespace {

const QByteArray kZeros = bytes("00 00 00 00 00 00 00 00 00 00 00 00 00 00 00");

/// The operations that have written log lines, each with its message.
QStringList operationsIn(const LogRecorder &log)
{
    QStringList found;
    for (const LogLine &line : log.lines()) {
        const QString signature = line.text.section(QStringLiteral("void canbus::VelClimateGroupCmd::"), 1);
        found += line.text.left(6) + signature.section(')', 0, 0) + ')'
            + line.text.section(QStringLiteral(" --"), 1);
    }
    return found;
}

} // namespace

/// The screen's type, title and labels; what is kept, repeated and logged.
class TestClimateItems : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void readsTypeAndTitle_data();
    void readsTypeAndTitle();
    void announcesTypeAndTitleOnChanges();
    void refusesATypeWithoutTitle_data();
    void refusesATypeWithoutTitle();
    void repeatsATitleThatCleaningAlters();
    void splitsTheLabels_data();
    void splitsTheLabels();
    void announcesLabelsOnChanges();
    void repeatsAnEmptyListOfLabels();
    void refusesAPayloadWithoutLabels();
    void reportsItsInitialValues();
    void reportsWhatItHasStored();
    void keepsItsStateThroughErrors();
    void decodesEachItemAlone();
    void announcesAPairWhenEitherPartChanges();
    void logsEachItem();
    void logsTypeTitleAndLabels();
};

void TestClimateItems::readsTypeAndTitle_data()
{
    QTest::addColumn<QByteArray>("data");
    QTest::addColumn<QStringList>("announced");
    QTest::newRow("up to the first zero byte")
        << bytes("05 41 43 00 42 00") << QStringList {"updateClimateType(5)", "updateClimateTopText('AC')"};
    QTest::newRow("up to the end") << bytes("00 41 43")
                                   << QStringList {"updateClimateType(0)", "updateClimateTopText('AC')"};
    QTest::newRow("an empty title is none") << bytes("05 00") << QStringList {"updateClimateType(5)"};
    QTest::newRow("the type is unsigned")
        << bytes("9f 41") << QStringList {"updateClimateType(159)", "updateClimateTopText('A')"};
    QTest::newRow("the greatest type") << bytes("ff 00") << QStringList {"updateClimateType(255)"};
    QTest::newRow("UTF-8") << bytes("01 c2 b0 43 00")
                           << QStringList {"updateClimateType(1)",
                                           QString::fromUtf16(u"updateClimateTopText('\u00b0C')")};
    QTest::newRow("undecodable bytes vanish")
        << bytes("01 41 ff 42 00") << QStringList {"updateClimateType(1)", "updateClimateTopText('AB')"};
}

void TestClimateItems::readsTypeAndTitle()
{
    QFETCH(QByteArray, data);
    VelClimateGroupCmd group;
    Announcements seen(&group);
    group.onClimateType(data);
    QTEST(seen.take(), "announced");
}

void TestClimateItems::announcesTypeAndTitleOnChanges()
{
    VelClimateGroupCmd group;
    Announcements seen(&group);
    group.onClimateType(bytes("05 41 00"));
    seen.take();
    group.onClimateType(bytes("05 41 00"));
    QCOMPARE(seen.take(), QStringList());
    group.onClimateType(bytes("06 41 00"));
    QCOMPARE(seen.take(), QStringList {"updateClimateType(6)"});
    group.onClimateType(bytes("06 42 00"));
    QCOMPARE(seen.take(), QStringList {"updateClimateTopText('B')"});
    group.onClimateType(bytes("06 00"));
    QCOMPARE(seen.take(), QStringList {"updateClimateTopText('')"});
}

void TestClimateItems::refusesATypeWithoutTitle_data()
{
    QTest::addColumn<QByteArray>("data");
    QTest::newRow("1 byte") << bytes("05");
    QTest::newRow("none") << QByteArray();
}

void TestClimateItems::refusesATypeWithoutTitle()
{
    QFETCH(QByteArray, data);
    VelClimateGroupCmd group;
    Announcements seen(&group);
    LogRecorder log;
    group.onClimateType(data);
    QCOMPARE(seen.take(), QStringList());
    QCOMPARE(operationsIn(log), QStringList {"[ERR] onClimateType(QByteArray) data is error"});
}

void TestClimateItems::repeatsATitleThatCleaningAlters()
{
    VelClimateGroupCmd group;
    Announcements seen(&group);
    const QByteArray spoilt = bytes("05 41 ff 42 00");
    group.onClimateType(spoilt);
    QCOMPARE(seen.take(), (QStringList {"updateClimateType(5)", "updateClimateTopText('AB')"}));
    LogRecorder log;
    group.onClimateType(spoilt);
    QCOMPARE(seen.take(), QStringList {"updateClimateTopText('AB')"});
    group.onClimateType(spoilt);
    QCOMPARE(seen.take(), QStringList {"updateClimateTopText('AB')"});
    QCOMPARE(log.messages("[DBG]"), (QStringList {"\"AB\"", "\"AB\""}));
    // The clean form of the same title is what is stored.
    group.onClimateType(bytes("05 41 42 00"));
    QCOMPARE(seen.take(), QStringList());
}

void TestClimateItems::splitsTheLabels_data()
{
    QTest::addColumn<QByteArray>("data");
    QTest::addColumn<QStringList>("labels");
    QTest::newRow("two labels") << bytes("41 00 42 43 00") << QStringList {"A", "BC"};
    QTest::newRow("an empty label") << bytes("00") << QStringList {""};
    QTest::newRow("a label without its zero is lost") << bytes("41 00 42") << QStringList {"A"};
    QTest::newRow("none is complete") << bytes("41 42") << QStringList();
    QTest::newRow("undecodable bytes vanish") << bytes("41 9f 00 ff 00") << QStringList {"A", ""};
}

void TestClimateItems::splitsTheLabels()
{
    QFETCH(QByteArray, data);
    VelClimateGroupCmd group;
    QSignalSpy announced(&group, &VelClimateGroupCmd::updateClimateComText);
    group.onClimateCustomLabel(data);
    QCOMPARE(announced.size(), 1);
    QTEST(announced.at(0).at(0).toStringList(), "labels");
}

void TestClimateItems::announcesLabelsOnChanges()
{
    VelClimateGroupCmd group;
    Announcements seen(&group);
    group.onClimateCustomLabel(bytes("41 00"));
    QCOMPARE(seen.take(), QStringList {"updateClimateComText(['A'])"});
    group.onClimateCustomLabel(bytes("41 00"));
    // Undecodable bytes are gone before the labels are compared.
    group.onClimateCustomLabel(bytes("41 ff 00"));
    QCOMPARE(seen.take(), QStringList());
    group.onClimateCustomLabel(bytes("41 00 42 00"));
    QCOMPARE(seen.take(), QStringList {"updateClimateComText(['A', 'B'])"});
}

void TestClimateItems::repeatsAnEmptyListOfLabels()
{
    VelClimateGroupCmd group;
    QSignalSpy announced(&group, &VelClimateGroupCmd::updateClimateComText);
    LogRecorder log;
    for (int count = 0; count < 3; ++count)
        group.onClimateCustomLabel(bytes("41"));
    QCOMPARE(announced.size(), 3);
    QCOMPARE(announced.at(2).at(0).toStringList(), QStringList());
    QCOMPARE(log.messages("[DBG]"), (QStringList {"()", "()", "()"}));
    group.onClimateCustomLabel(bytes("41 00"));
    group.onClimateCustomLabel(bytes("41"));
    group.onClimateCustomLabel(bytes("41"));
    QCOMPARE(announced.size(), 6);
}

void TestClimateItems::refusesAPayloadWithoutLabels()
{
    VelClimateGroupCmd group;
    Announcements seen(&group);
    LogRecorder log;
    group.onClimateCustomLabel(QByteArray());
    QCOMPARE(seen.take(), QStringList());
    QCOMPARE(operationsIn(log), QStringList {"[ERR] onClimateCustomLabel(QByteArray) data is error"});
}

void TestClimateItems::reportsItsInitialValues()
{
    VelClimateGroupCmd group;
    Announcements seen(&group);
    QVERIFY(QMetaObject::invokeMethod(&group, "getClimateInfo"));
    QCOMPARE(seen.take(),
             (QStringList {
                 "updateClimateType(-1)",
                 "updateClimateTopText('')",
                 "updateClimateComText([])",
                 "updateClimateBtnStatus([])",
                 "updateClimateMainTemp(-1, -1)",
                 "updateClimateSecondTemp(-1, -1)",
                 "updateClimateHeatSeat(-1, -1)",
                 "updateClimateCoolSeat(-1, -1)",
                 "updateClimateFanDirectValue(-1)",
                 "updateClimateFanSpeedStatus(-1)",
                 "updateClimateVentPosition(-1)",
                 "updateClimateFanDirect(-1)",
                 "updateClimateManualTempValue(-1)",
                 "updateClimateSystem(false)",
                 "updateClimateDriverSeatPos(false)",
             }));
}

void TestClimateItems::reportsWhatItHasStored()
{
    VelClimateGroupCmd group;
    group.onClimateType(bytes("05 41 43 00"));
    group.onClimateCustomLabel(bytes("41 00 42 00"));
    group.onClimateData(bytes("01 2c 00 d7 9b 1b 12 34 64 b9 5a c6 1d 3e c8"));
    Announcements seen(&group);
    LogRecorder log;
    const QStringList all {
        "updateClimateType(5)",
        "updateClimateTopText('AC')",
        "updateClimateComText(['A', 'B'])",
        "updateClimateBtnStatus([2, 3, 0, 1, 2, 3, 3, 2, 1, 2, 2, 3, 0, 1, 2, 0, 1, 3, 2, 3])",
        "updateClimateMainTemp(300, 2)",
        "updateClimateSecondTemp(215, 1)",
        "updateClimateHeatSeat(1, 2)",
        "updateClimateCoolSeat(3, 4)",
        "updateClimateFanDirectValue(100)",
        "updateClimateFanSpeedStatus(2)",
        "updateClimateVentPosition(5)",
        "updateClimateFanDirect(1)",
        "updateClimateManualTempValue(200)",
        "updateClimateSystem(true)",
        "updateClimateDriverSeatPos(true)",
    };
    group.getClimateInfo();
    QCOMPARE(seen.take(), all);
    group.getClimateInfo();
    QCOMPARE(seen.take(), all);
    QVERIFY(log.lines().isEmpty());
}

void TestClimateItems::keepsItsStateThroughErrors()
{
    VelClimateGroupCmd group;
    group.onClimateType(bytes("05 41 00"));
    group.onClimateCustomLabel(bytes("42 00"));
    group.onClimateData(kZeros);
    Announcements seen(&group);
    group.getClimateInfo();
    const QStringList before = seen.take();
    group.onClimateType(bytes("09"));
    group.onClimateCustomLabel(QByteArray());
    group.onClimateData(bytes("ff ff ff ff ff ff ff ff ff ff ff ff ff ff"));
    QCOMPARE(seen.take(), QStringList());
    group.getClimateInfo();
    QCOMPARE(seen.take(), before);
}

void TestClimateItems::decodesEachItemAlone()
{
    VelClimateGroupCmd group;
    Announcements seen(&group);
    const QByteArray data = bytes("01 2c 00 d7 9b 1b 12 34 64 b9 5a c6 1d 3e c8");
    group.onClimateManualTempValue(200);
    group.onClimateFanDirect(data);
    group.onClimateVentPosition(data);
    group.onClimateFanSpeedStatus(data);
    group.onClimateFanDirectValue(255);
    group.onClimateCoolSeat(data);
    group.onClimateHeatSeat(data);
    group.onClimateSecondTemp(data);
    group.onClimateMainTemp(data);
    group.onClimateBtnStatus(data);
    group.onClimateDriverSeatPosition(char(0x9f)); // its bit 5 is clear
    group.onClimateSystem(char(0x9f));
    QCOMPARE(seen.take(),
             (QStringList {
                 "updateClimateManualTempValue(200)",
                 "updateClimateFanDirect(1)",
                 "updateClimateVentPosition(5)",
                 "updateClimateFanSpeedStatus(2)",
                 "updateClimateFanDirectValue(255)",
                 "updateClimateCoolSeat(3, 4)",
                 "updateClimateHeatSeat(1, 2)",
                 "updateClimateSecondTemp(215, 1)",
                 "updateClimateMainTemp(300, 2)",
                 "updateClimateBtnStatus([2, 3, 0, 1, 2, 3, 3, 2, 1, 2, 2, 3, 0, 1, 2, 0, 1, 3, 2, 3])",
                 "updateClimateSystem(true)",
             }));
}

void TestClimateItems::announcesAPairWhenEitherPartChanges()
{
    VelClimateGroupCmd group;
    group.onClimateData(kZeros);
    Announcements seen(&group);
    LogRecorder log;
    group.onClimateMainTemp(bytes("00 01 00 00 00"));
    group.onClimateMainTemp(bytes("00 01 00 00 40"));
    group.onClimateMainTemp(bytes("00 01 ff ff 7f")); // the second zone's part alone
    group.onClimateSecondTemp(bytes("00 00 00 02 00"));
    group.onClimateSecondTemp(bytes("00 00 00 02 10"));
    group.onClimateSecondTemp(bytes("ff ff 00 02 df"));
    QCOMPARE(seen.take(),
             (QStringList {"updateClimateMainTemp(1, 0)", "updateClimateMainTemp(1, 1)",
                           "updateClimateSecondTemp(2, 0)", "updateClimateSecondTemp(2, 1)"}));
    group.onClimateHeatSeat(bytes("00 00 00 00 00 00 30"));
    group.onClimateHeatSeat(bytes("00 00 00 00 00 00 34"));
    group.onClimateHeatSeat(bytes("00 00 00 00 00 00 34"));
    group.onClimateCoolSeat(bytes("00 00 00 00 00 00 00 50"));
    group.onClimateCoolSeat(bytes("00 00 00 00 00 00 00 56"));
    group.onClimateCoolSeat(bytes("00 00 00 00 00 00 00 56"));
    QCOMPARE(seen.take(),
             (QStringList {"updateClimateHeatSeat(3, 0)", "updateClimateHeatSeat(3, 4)",
                           "updateClimateCoolSeat(5, 0)", "updateClimateCoolSeat(5, 6)"}));
    QCOMPARE(log.messages("[DBG]").size(), 4 + 2 * 4);
}

void TestClimateItems::logsEachItem()
{
    VelClimateGroupCmd group;
    LogRecorder log;
    group.onClimateData(bytes("01 2c 00 d7 9b 1b 12 34 9f b9 5a c6 1d 3e c8"));
    const QStringList expected {
        "[DBG] onClimateSystem(char) Climate System Status  true",
        "[DBG] onClimateDriverSeatPosition(char) Driver Seat Position  true",
        "[DBG] onClimateBtnStatus(QByteArray) (2, 3, 0, 1, 2, 3, 3, 2, 1, 2, 2, 3, 0, 1, 2, 0, 1, 3, 2, 3)",
        "[DBG] onClimateMainTemp(QByteArray) 300 2",
        "[DBG] onClimateSecondTemp(QByteArray) 215 1",
        "[DBG] onClimateHeatSeat(QByteArray) Left Heated Seat 1",
        "[DBG] onClimateHeatSeat(QByteArray) Right Heated Seat 2",
        "[DBG] onClimateCoolSeat(QByteArray) Left Cooled Seat 3",
        "[DBG] onClimateCoolSeat(QByteArray) Right Cooled Seat 4",
        QString::fromUtf16(
            u"[DBG] onClimateFanDirectValue(int) 0 \u2013 255 Fan direct Value (Auto) Meter 159"),
        "[DBG] onClimateFanSpeedStatus(QByteArray) 2",
        "[DBG] onClimateVentPosition(QByteArray) Vent Position 5",
        "[DBG] onClimateFanDirect(QByteArray) 1",
        "[DBG] onClimateManualTempValue(int) Manual Temperature Value Meter: 200",
    };
    QCOMPARE(operationsIn(log), expected);
    log.clear();
    group.onClimateSystem(0);
    group.onClimateDriverSeatPosition(0);
    QCOMPARE(log.messages("[DBG]"),
             (QStringList {"Climate System Status  false", "Driver Seat Position  false"}));
}

void TestClimateItems::logsTypeTitleAndLabels()
{
    VelClimateGroupCmd group;
    LogRecorder log;
    group.onClimateType(bytes("9f 41 43 00"));
    group.onClimateCustomLabel(bytes("41 00 00"));
    QCOMPARE(operationsIn(log),
             (QStringList {"[DBG] onClimateType(QByteArray) 159", "[DBG] onClimateType(QByteArray) \"AC\"",
                           "[DBG] onClimateCustomLabel(QByteArray) (\"A\", \"\")"}));
}

QTEST_GUILESS_MAIN(TestClimateItems)
#include "tst_velclimategroupcmd_items.moc"
