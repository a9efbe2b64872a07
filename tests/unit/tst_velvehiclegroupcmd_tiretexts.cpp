#include "announcements.h"
#include "hexbytes.h"
#include "logrecorder.h"
#include "virtualtime.h"

#include "velvehiclegroupcmd.h"

#include <QtTest/QTest>

using namespace canbus;

class VelVehicleGroupCmdTireTextsTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void readsTheTextsBehindTheState_data();
    void readsTheTextsBehindTheState();
    void announcesAChange300MsLater();
    void announcesTwoChangesOnceWithTheSecond();
    void isNotHeldUpByFurtherChanges();
    void announcesATextThatIsBackAgain();
    void announcesTheNextChange300MsAfterIt();
    void announcesTextsOnlyWhenTheyChange();
    void announcesAnEmptyListEachTime();
    void givesTheLatestTextsOnRequestAtOnce();
    void announcesWhenItIsToldThatTheTimeIsOut();
    void logsTheEndOfTheDelay();
};

void VelVehicleGroupCmdTireTextsTest::readsTheTextsBehindTheState_data()
{
    QTest::addColumn<QByteArray>("payload");
    QTest::addColumn<QString>("texts");

    QTest::newRow("four texts") << bytes("00 00 00 32 2e 31 00 32 2e 32 00 32 2e 33 00 32 2e 34 00")
                                << "['2.1', '2.2', '2.3', '2.4']";
    QTest::newRow("nothing behind the state") << bytes("00 00 00") << "[]";
    QTest::newRow("a zero byte alone") << bytes("00 00 00 00") << "['']";
    QTest::newRow("no zero byte") << bytes("00 00 00 41 42") << "[]";
    QTest::newRow("without bytes behind the last zero byte") << bytes("00 00 00 41 00 00 42") << "['A', '']";
    QTest::newRow("without what is no UTF-8") << bytes("00 00 00 41 ff 42 00") << "['AB']";
}

void VelVehicleGroupCmdTireTextsTest::readsTheTextsBehindTheState()
{
    QFETCH(QByteArray, payload);
    QFETCH(QString, texts);

    VelVehicleGroupCmd group;
    group.onVehicleData(payload);
    Announcements heard(&group);
    VirtualTime::advance(300);
    QCOMPARE(heard.take(), QStringList {"updateVehicleTireText(" + texts + ")"});
}

void VelVehicleGroupCmdTireTextsTest::announcesAChange300MsLater()
{
    VelVehicleGroupCmd group;
    Announcements heard(&group);
    group.onVehicleTireText(bytes("00 00 00 41 00"));
    VirtualTime::advance(299);
    QCOMPARE(heard.take(), QStringList());
    VirtualTime::advance(1);
    QCOMPARE(heard.take(), QStringList {"updateVehicleTireText(['A'])"});
    VirtualTime::advance(3000);
    QCOMPARE(heard.take(), QStringList());
}

void VelVehicleGroupCmdTireTextsTest::announcesTwoChangesOnceWithTheSecond()
{
    VelVehicleGroupCmd group;
    Announcements heard(&group);
    group.onVehicleTireText(bytes("00 00 00 41 00"));
    VirtualTime::advance(100);
    group.onVehicleTireText(bytes("00 00 00 42 00"));
    VirtualTime::advance(199);
    QCOMPARE(heard.take(), QStringList());
    VirtualTime::advance(1);
    QCOMPARE(heard.take(), QStringList {"updateVehicleTireText(['B'])"});
    VirtualTime::advance(3000);
    QCOMPARE(heard.take(), QStringList());
}

void VelVehicleGroupCmdTireTextsTest::isNotHeldUpByFurtherChanges()
{
    VelVehicleGroupCmd group;
    Announcements heard(&group);
    group.onVehicleTireText(bytes("00 00 00 41 00"));
    VirtualTime::advance(299);
    group.onVehicleTireText(bytes("00 00 00 42 00"));
    VirtualTime::advance(1);
    QCOMPARE(heard.take(), QStringList {"updateVehicleTireText(['B'])"});
}

void VelVehicleGroupCmdTireTextsTest::announcesATextThatIsBackAgain()
{
    VelVehicleGroupCmd group;
    group.onVehicleTireText(bytes("00 00 00 41 00"));
    VirtualTime::advance(300);
    Announcements heard(&group);
    group.onVehicleTireText(bytes("00 00 00 42 00"));
    group.onVehicleTireText(bytes("00 00 00 41 00"));
    VirtualTime::advance(300);
    QCOMPARE(heard.take(), QStringList {"updateVehicleTireText(['A'])"});
}

void VelVehicleGroupCmdTireTextsTest::announcesTheNextChange300MsAfterIt()
{
    VelVehicleGroupCmd group;
    group.onVehicleTireText(bytes("00 00 00 41 00"));
    VirtualTime::advance(350);
    Announcements heard(&group);
    group.onVehicleTireText(bytes("00 00 00 42 00"));
    VirtualTime::advance(299);
    QCOMPARE(heard.take(), QStringList());
    VirtualTime::advance(1);
    QCOMPARE(heard.take(), QStringList {"updateVehicleTireText(['B'])"});
}

void VelVehicleGroupCmdTireTextsTest::announcesTextsOnlyWhenTheyChange()
{
    VelVehicleGroupCmd group;
    group.onVehicleTireText(bytes("00 00 00 41 00"));
    VirtualTime::advance(300);
    Announcements heard(&group);
    group.onVehicleTireText(bytes("00 00 00 41 00"));
    group.onVehicleTireText(bytes("ff ff ff 41 00"));
    VirtualTime::advance(3000);
    QCOMPARE(heard.take(), QStringList());
}

void VelVehicleGroupCmdTireTextsTest::announcesAnEmptyListEachTime()
{
    VelVehicleGroupCmd group;
    Announcements heard(&group);
    group.onVehicleTireText(bytes("00 00 00"));
    VirtualTime::advance(300);
    QCOMPARE(heard.take(), QStringList {"updateVehicleTireText([])"});
    group.onVehicleTireText(bytes("00 00 00"));
    VirtualTime::advance(299);
    QCOMPARE(heard.take(), QStringList());
    VirtualTime::advance(1);
    QCOMPARE(heard.take(), QStringList {"updateVehicleTireText([])"});
}

void VelVehicleGroupCmdTireTextsTest::givesTheLatestTextsOnRequestAtOnce()
{
    VelVehicleGroupCmd group;
    group.onVehicleTireText(bytes("00 00 00 41 00"));
    Announcements heard(&group);
    group.getVehicleInfo();
    QCOMPARE(heard.take("updateVehicleTireText"), QStringList {"updateVehicleTireText(['A'])"});
    VirtualTime::advance(300);
    QCOMPARE(heard.take(), QStringList {"updateVehicleTireText(['A'])"});
}

void VelVehicleGroupCmdTireTextsTest::announcesWhenItIsToldThatTheTimeIsOut()
{
    VelVehicleGroupCmd group;
    group.onVehicleTireText(bytes("00 00 00 41 00"));
    Announcements heard(&group);
    QVERIFY(QMetaObject::invokeMethod(&group, "onTimerOut"));
    QCOMPARE(heard.take(), QStringList {"updateVehicleTireText(['A'])"});
}

void VelVehicleGroupCmdTireTextsTest::logsTheEndOfTheDelay()
{
    VelVehicleGroupCmd group;
    LogRecorder log;
    group.onVehicleTireText(bytes("00 00 00 41 00"));
    QCOMPARE(log.messages("[DBG]"), QStringList {"(\"A\")"});
    VirtualTime::advance(300);
    QCOMPARE(log.messages("[DBG]"), (QStringList {"(\"A\")", "VelVehicleGroupCmd timer out"}));
    QCOMPARE(log.messages("[ERR]"), QStringList());
}

VIRTUAL_TIME_TEST_MAIN(VelVehicleGroupCmdTireTextsTest)
#include "tst_velvehiclegroupcmd_tiretexts.moc"
