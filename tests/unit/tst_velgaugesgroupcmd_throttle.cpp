#include "announcements.h"
#include "hexbytes.h"
#include "logrecorder.h"
#include "virtualtime.h"

#include "velgaugesgroupcmd.h"

#include <QtTest/QTest>

using namespace canbus;

namespace {

const QByteArray kZeros = bytes("00 00 00 00 0000 0000 0000 0000 00");

/// What is announced of the throttled items, always all three and in this order.
QStringList throttled(const QString &texts, const QString &values, const QString &shift)
{
    return {"updateGaugeValueText(" + texts + ")", "updateGaugeValue(" + values + ")",
            "updateGaugeShift(" + shift + ")"};
}

/// Lets a running throttle end and another quiet second pass.
void comeToRest()
{
    VirtualTime::advance(1300);
}

} // namespace

class VelGaugesGroupCmdThrottleTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void announcesAllThreeAtOnceForOneThatChanges_data();
    void announcesAllThreeAtOnceForOneThatChanges();
    void announcesAllThreeOnceMoreWhenTheTimeIsOut();
    void announcesASecondChangeWhenTheTimeIsOut();
    void announcesTheLatestOfSeveralChanges();
    void isNotHeldUpByFurtherChanges();
    void throttlesAChangeFromWithinAnAnnouncement();
    void announcesAtOnceAgainAfterTheTime();
    void announcesNothingForTheSameItems();
    void announcesAShiftThatIsBackAgain();
    void sharesOneThrottleBetweenTheItems();
    void announcesTheRestOfTheFirstStateWhenTheTimeIsOut();
    void announcesAnEmptyTextListEachTime();
    void throttlesEmptyTextLists();
    void readsTheValueTexts_data();
    void readsTheValueTexts();
    void announcesUnthrottledItemsWhileTheThrottleRuns();
    void givesTheLatestItemsOnRequestAtOnce();
    void announcesWhenItIsToldThatTheTimeIsOut();
    void logsEachAnnouncement();
};

void VelGaugesGroupCmdThrottleTest::announcesAllThreeAtOnceForOneThatChanges_data()
{
    QTest::addColumn<QByteArray>("payload");
    QTest::addColumn<QStringList>("announced");

    const auto row = [](const char *name, const char *payload, const QStringList &announced) {
        QTest::newRow(name) << bytes(payload) << announced;
    };
    row("value of the centre", "00 ff 00 00 0000 0000 0000 0000 00",
        throttled("['']", "[255, 0, 0, 0, 0]", "false"));
    row("value top left", "00 00 00 00 00ff 0000 0000 0000 00",
        throttled("['']", "[0, 255, 0, 0, 0]", "false"));
    row("value top right", "00 00 00 00 0000 0080 0000 0000 00",
        throttled("['']", "[0, 0, 128, 0, 0]", "false"));
    row("value bottom left", "00 00 00 00 0000 0000 009f 0000 00",
        throttled("['']", "[0, 0, 0, 159, 0]", "false"));
    row("value bottom right", "00 00 00 00 0000 0000 0000 0001 00",
        throttled("['']", "[0, 0, 0, 0, 1]", "false"));
    row("shift", "00 00 01 00 0000 0000 0000 0000 00", throttled("['']", "[0, 0, 0, 0, 0]", "true"));
    row("value texts", "00 00 00 00 0000 0000 0000 0000 41 00",
        throttled("['A']", "[0, 0, 0, 0, 0]", "false"));
}

void VelGaugesGroupCmdThrottleTest::announcesAllThreeAtOnceForOneThatChanges()
{
    QFETCH(QByteArray, payload);
    QFETCH(QStringList, announced);

    VelGaugesGroupCmd group;
    group.handleGaugeStateValue(kZeros);
    comeToRest();
    Announcements heard(&group);
    group.handleGaugeStateValue(payload);
    QCOMPARE(heard.take(), announced);
}

void VelGaugesGroupCmdThrottleTest::announcesAllThreeOnceMoreWhenTheTimeIsOut()
{
    VelGaugesGroupCmd group;
    Announcements heard(&group);
    group.handleGaugeShift(1);
    QCOMPARE(heard.take(), throttled("[]", "[]", "true"));
    VirtualTime::advance(299);
    QCOMPARE(heard.take(), QStringList());
    VirtualTime::advance(1);
    QCOMPARE(heard.take(), throttled("[]", "[]", "true"));
    VirtualTime::advance(3000);
    QCOMPARE(heard.take(), QStringList());
}

void VelGaugesGroupCmdThrottleTest::announcesASecondChangeWhenTheTimeIsOut()
{
    VelGaugesGroupCmd group;
    Announcements heard(&group);
    group.handleGaugeValue(bytes("00 01 00 00 0002 0003 0004 0005"));
    QCOMPARE(heard.take(), throttled("[]", "[1, 2, 3, 4, 5]", "false"));
    VirtualTime::advance(100);
    group.handleGaugeValue(bytes("00 06 00 00 0007 0008 0009 000a"));
    VirtualTime::advance(199);
    QCOMPARE(heard.take(), QStringList());
    VirtualTime::advance(1);
    QCOMPARE(heard.take(), throttled("[]", "[6, 7, 8, 9, 10]", "false"));
    VirtualTime::advance(3000);
    QCOMPARE(heard.take(), QStringList());
}

void VelGaugesGroupCmdThrottleTest::announcesTheLatestOfSeveralChanges()
{
    VelGaugesGroupCmd group;
    group.handleGaugeShift(1);
    Announcements heard(&group);
    group.handleGaugeValue(bytes("00 01 00 00 0000 0000 0000 0000"));
    group.handleGaugeValueText(bytes("00 00 00 00 0000 0000 0000 0000 41 00"));
    VirtualTime::advance(100);
    group.handleGaugeValue(bytes("00 02 00 00 0000 0000 0000 0000"));
    group.handleGaugeValueText(bytes("00 00 00 00 0000 0000 0000 0000 42 00"));
    group.handleGaugeShift(0);
    QCOMPARE(heard.take(), QStringList());
    VirtualTime::advance(200);
    QCOMPARE(heard.take(), throttled("['B']", "[2, 0, 0, 0, 0]", "false"));
}

void VelGaugesGroupCmdThrottleTest::isNotHeldUpByFurtherChanges()
{
    VelGaugesGroupCmd group;
    group.handleGaugeShift(1);
    Announcements heard(&group);
    VirtualTime::advance(299);
    group.handleGaugeShift(0);
    VirtualTime::advance(1);
    QCOMPARE(heard.take(), throttled("[]", "[]", "false"));
}

void VelGaugesGroupCmdThrottleTest::throttlesAChangeFromWithinAnAnnouncement()
{
    VelGaugesGroupCmd group;
    Announcements heard(&group);
    connect(&group, &VelGaugesGroupCmd::updateGaugeValue, &group,
            [&group] { group.handleGaugeValue(bytes("00 06 00 00 0007 0008 0009 000a")); });
    group.handleGaugeValue(bytes("00 01 00 00 0002 0003 0004 0005"));
    QCOMPARE(heard.take(), throttled("[]", "[1, 2, 3, 4, 5]", "false"));
    VirtualTime::advance(299);
    QCOMPARE(heard.take(), QStringList());
    VirtualTime::advance(1);
    QCOMPARE(heard.take(), throttled("[]", "[6, 7, 8, 9, 10]", "false"));
    VirtualTime::advance(3000);
    QCOMPARE(heard.take(), QStringList());
}

void VelGaugesGroupCmdThrottleTest::announcesAtOnceAgainAfterTheTime()
{
    VelGaugesGroupCmd group;
    group.handleGaugeShift(1);
    VirtualTime::advance(300);
    Announcements heard(&group);
    group.handleGaugeShift(0);
    QCOMPARE(heard.take(), throttled("[]", "[]", "false"));
    group.handleGaugeShift(1);
    VirtualTime::advance(299);
    QCOMPARE(heard.take(), QStringList());
    VirtualTime::advance(1);
    QCOMPARE(heard.take(), throttled("[]", "[]", "true"));
}

void VelGaugesGroupCmdThrottleTest::announcesNothingForTheSameItems()
{
    const QByteArray payload = bytes("00 01 01 00 0002 0003 0004 0005 41 00");
    VelGaugesGroupCmd group;
    group.handleGaugeStateValue(payload);
    comeToRest();
    Announcements heard(&group);
    group.handleGaugeStateValue(payload);
    comeToRest();
    QCOMPARE(heard.take(), QStringList());
}

void VelGaugesGroupCmdThrottleTest::announcesAShiftThatIsBackAgain()
{
    VelGaugesGroupCmd group;
    Announcements heard(&group);
    group.handleGaugeShift(0);
    QCOMPARE(heard.take(), QStringList());
    group.handleGaugeShift(1);
    QCOMPARE(heard.take("updateGaugeShift"), QStringList {"updateGaugeShift(true)"});
    comeToRest();
    heard.take();
    group.handleGaugeShift(char(0xfe));
    QCOMPARE(heard.take("updateGaugeShift"), QStringList {"updateGaugeShift(false)"});
}

void VelGaugesGroupCmdThrottleTest::sharesOneThrottleBetweenTheItems()
{
    VelGaugesGroupCmd group;
    group.handleGaugeValueText(bytes("00 00 00 00 0000 0000 0000 0000 41 00"));
    Announcements heard(&group);
    VirtualTime::advance(100);
    group.handleGaugeValue(bytes("00 01 00 00 0000 0000 0000 0000"));
    VirtualTime::advance(100);
    group.handleGaugeShift(1);
    VirtualTime::advance(99);
    QCOMPARE(heard.take(), QStringList());
    VirtualTime::advance(1);
    QCOMPARE(heard.take(), throttled("['A']", "[1, 0, 0, 0, 0]", "true"));
    VirtualTime::advance(3000);
    QCOMPARE(heard.take(), QStringList());
}

void VelGaugesGroupCmdThrottleTest::announcesTheRestOfTheFirstStateWhenTheTimeIsOut()
{
    VelGaugesGroupCmd group;
    group.handleGaugeStateValue(bytes("00 01 01 00 0002 0003 0004 0005 41 00 42 00"));
    Announcements heard(&group);
    VirtualTime::advance(300);
    QCOMPARE(heard.take(), throttled("['A', 'B']", "[1, 2, 3, 4, 5]", "true"));
}

void VelGaugesGroupCmdThrottleTest::announcesAnEmptyTextListEachTime()
{
    const QByteArray noText = bytes("00 01 00 00 0002 0003 0004 0005 41");
    VelGaugesGroupCmd group;
    group.handleGaugeStateValue(noText);
    comeToRest();
    Announcements heard(&group);
    group.handleGaugeStateValue(noText);
    QCOMPARE(heard.take(), throttled("[]", "[1, 2, 3, 4, 5]", "false"));
}

void VelGaugesGroupCmdThrottleTest::throttlesEmptyTextLists()
{
    const QByteArray noText = bytes("00 00 00 00 0000 0000 0000 0000 41");
    VelGaugesGroupCmd group;
    Announcements heard(&group);
    group.handleGaugeValueText(noText);
    QCOMPARE(heard.take(), throttled("[]", "[]", "false"));
    group.handleGaugeValueText(noText);
    group.handleGaugeValueText(noText);
    QCOMPARE(heard.take(), QStringList());
    VirtualTime::advance(300);
    QCOMPARE(heard.take(), throttled("[]", "[]", "false"));
}

void VelGaugesGroupCmdThrottleTest::readsTheValueTexts_data()
{
    QTest::addColumn<QByteArray>("payload");
    QTest::addColumn<QString>("texts");

    const auto row = [](const char *name, const char *payload, const char *texts) {
        QTest::newRow(name) << bytes(payload) << QString(texts);
    };
    row("two texts", "31 32 33 34 3536 3738 3930 4142 43 44 00 45 00", "['CD', 'E']");
    row("a zero byte alone", "00 00 00 00 0000 0000 0000 0000 00", "['']");
    row("no zero byte", "00 00 00 00 0000 0000 0000 0000 41 42", "[]");
    row("without bytes behind the last zero byte", "00 00 00 00 0000 0000 0000 0000 41 00 00 42",
        "['A', '']");
    row("without what is no UTF-8", "00 00 00 00 0000 0000 0000 0000 41 ff 42 00", "['AB']");
}

void VelGaugesGroupCmdThrottleTest::readsTheValueTexts()
{
    QFETCH(QByteArray, payload);
    QFETCH(QString, texts);

    VelGaugesGroupCmd group;
    group.handleGaugeStateValue(payload);
    Announcements heard(&group);
    VirtualTime::advance(300);
    QCOMPARE(heard.take("updateGaugeValueText"), QStringList {"updateGaugeValueText(" + texts + ")"});
}

void VelGaugesGroupCmdThrottleTest::announcesUnthrottledItemsWhileTheThrottleRuns()
{
    VelGaugesGroupCmd group;
    group.handleGaugeStateValue(kZeros);
    Announcements heard(&group);
    group.handleGaugeStateValue(bytes("07 01 02 04 0000 0000 0000 0000 00"));
    QCOMPARE(heard.take(),
             (QStringList {
                 "updateGaugeFormat([true, false, false, false, false])",
                 "updateGaugePeakColorState(1)",
                 "updateGaugeZeroPos([7, 0, 0, 0, 0])",
             }));
}

void VelGaugesGroupCmdThrottleTest::givesTheLatestItemsOnRequestAtOnce()
{
    VelGaugesGroupCmd group;
    group.handleGaugeShift(1);
    group.handleGaugeShift(0);
    Announcements heard(&group);
    group.getGaugesInfo();
    QCOMPARE(heard.take("updateGaugeShift"), QStringList {"updateGaugeShift(false)"});
    VirtualTime::advance(300);
    QCOMPARE(heard.take(), throttled("[]", "[]", "false"));
}

void VelGaugesGroupCmdThrottleTest::announcesWhenItIsToldThatTheTimeIsOut()
{
    VelGaugesGroupCmd group;
    Announcements heard(&group);
    QVERIFY(QMetaObject::invokeMethod(&group, "onTimerOut"));
    QCOMPARE(heard.take(), throttled("[]", "[]", "false"));
}

void VelGaugesGroupCmdThrottleTest::logsEachAnnouncement()
{
    VelGaugesGroupCmd group;
    LogRecorder log;
    group.handleGaugeShift(1);
    QCOMPARE(log.messages("[DBG]"), (QStringList {"true", "timer out"}));
    group.handleGaugeShift(0);
    VirtualTime::advance(300);
    QCOMPARE(log.messages("[DBG]"), (QStringList {"true", "timer out", "false", "timer out"}));
    QCOMPARE(log.messages("[ERR]"), QStringList());
}

VIRTUAL_TIME_TEST_MAIN(VelGaugesGroupCmdThrottleTest)
#include "tst_velgaugesgroupcmd_throttle.moc"
