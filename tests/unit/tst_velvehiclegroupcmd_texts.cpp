#include "announcements.h"
#include "hexbytes.h"
#include "logrecorder.h"

#include "velvehiclegroupcmd.h"

#include <QtTest/QTest>

using namespace canbus;

class VelVehicleGroupCmdTextsTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void readsTheTitle_data();
    void readsTheTitle();
    void announcesATitleOnlyWhenItChanges();
    void announcesAnEmptyTitleEachTime();
    void announcesATitleThatCleaningAltersEachTime();
    void comparesTheTitleWithTheCleanedOne();
    void logsTheTitle();
    void readsTheLabels_data();
    void readsTheLabels();
    void announcesLabelsOnlyWhenTheyChange();
    void announcesAnEmptyLabelListEachTime();
    void logsTheLabels();
};

void VelVehicleGroupCmdTextsTest::readsTheTitle_data()
{
    QTest::addColumn<QByteArray>("payload");
    QTest::addColumn<QString>("title");

    QTest::newRow("all bytes") << bytes("41 42 43") << "ABC";
    QTest::newRow("up to the zero byte") << bytes("41 42 00 43") << "AB";
    QTest::newRow("one byte") << bytes("41") << "A";
    QTest::newRow("a zero byte alone") << bytes("00") << "";
    QTest::newRow("nothing before the zero byte") << bytes("00 41") << "";
    QTest::newRow("UTF-8") << bytes("c3a4 e4bda0 00") << QString::fromUtf8("\xc3\xa4\xe4\xbd\xa0");
    QTest::newRow("without what is no UTF-8") << bytes("41 ff 42 00") << "AB";
    QTest::newRow("nothing but what is no UTF-8") << bytes("ff") << "";
    QTest::newRow("without a replacement character that was sent") << bytes("41 efbfbd 42") << "AB";
}

void VelVehicleGroupCmdTextsTest::readsTheTitle()
{
    QFETCH(QByteArray, payload);
    QFETCH(QString, title);

    VelVehicleGroupCmd group;
    Announcements heard(&group);
    group.onVehicleTopText(payload);
    QCOMPARE(heard.take(), QStringList {"updateVehicleTopText('" + title + "')"});
}

void VelVehicleGroupCmdTextsTest::announcesATitleOnlyWhenItChanges()
{
    VelVehicleGroupCmd group;
    group.onVehicleTopText(bytes("41 42"));
    Announcements heard(&group);
    group.onVehicleTopText(bytes("41 42"));
    group.onVehicleTopText(bytes("41 42 00 43"));
    QCOMPARE(heard.take(), QStringList());
    group.onVehicleTopText(bytes("41 43"));
    QCOMPARE(heard.take(), QStringList {"updateVehicleTopText('AC')"});
}

void VelVehicleGroupCmdTextsTest::announcesAnEmptyTitleEachTime()
{
    VelVehicleGroupCmd group;
    Announcements heard(&group);
    group.onVehicleTopText(bytes("00"));
    group.onVehicleTopText(bytes("00"));
    QCOMPARE(heard.take(), (QStringList {"updateVehicleTopText('')", "updateVehicleTopText('')"}));
}

void VelVehicleGroupCmdTextsTest::announcesATitleThatCleaningAltersEachTime()
{
    VelVehicleGroupCmd group;
    Announcements heard(&group);
    group.onVehicleTopText(bytes("41 ff"));
    group.onVehicleTopText(bytes("41 ff"));
    QCOMPARE(heard.take(), (QStringList {"updateVehicleTopText('A')", "updateVehicleTopText('A')"}));
}

void VelVehicleGroupCmdTextsTest::comparesTheTitleWithTheCleanedOne()
{
    VelVehicleGroupCmd group;
    group.onVehicleTopText(bytes("41 ff"));
    Announcements heard(&group);
    group.onVehicleTopText(bytes("41"));
    QCOMPARE(heard.take(), QStringList());
}

void VelVehicleGroupCmdTextsTest::logsTheTitle()
{
    VelVehicleGroupCmd group;
    LogRecorder log;
    group.onVehicleTopText(bytes("41 ff 00"));
    QCOMPARE(log.messages("[DBG]"), (QStringList {"41ff00", "\"A\""}));
    group.onVehicleTopText(bytes("41"));
    QCOMPARE(log.messages("[DBG]"), (QStringList {"41ff00", "\"A\"", "41"}));
    QCOMPARE(log.messages("[ERR]"), QStringList());
}

void VelVehicleGroupCmdTextsTest::readsTheLabels_data()
{
    QTest::addColumn<QByteArray>("payload");
    QTest::addColumn<QString>("labels");

    QTest::newRow("two labels") << bytes("41 42 00 43 00") << "['AB', 'C']";
    QTest::newRow("an empty label") << bytes("00") << "['']";
    QTest::newRow("an empty label between two") << bytes("41 00 00 42 00") << "['A', '', 'B']";
    QTest::newRow("without bytes behind the last zero byte") << bytes("41 00 00 42") << "['A', '']";
    QTest::newRow("no zero byte") << bytes("41 42") << "[]";
    QTest::newRow("without what is no UTF-8") << bytes("41 ff 42 00 ff 00") << "['AB', '']";
}

void VelVehicleGroupCmdTextsTest::readsTheLabels()
{
    QFETCH(QByteArray, payload);
    QFETCH(QString, labels);

    VelVehicleGroupCmd group;
    Announcements heard(&group);
    group.onVehicleCustomLabel(payload);
    QCOMPARE(heard.take(), QStringList {"updateVehicleComText(" + labels + ")"});
}

void VelVehicleGroupCmdTextsTest::announcesLabelsOnlyWhenTheyChange()
{
    VelVehicleGroupCmd group;
    group.onVehicleCustomLabel(bytes("41 00"));
    Announcements heard(&group);
    group.onVehicleCustomLabel(bytes("41 00"));
    QCOMPARE(heard.take(), QStringList());
    group.onVehicleCustomLabel(bytes("41 00 42 00"));
    QCOMPARE(heard.take(), QStringList {"updateVehicleComText(['A', 'B'])"});
    group.onVehicleCustomLabel(bytes("42 00"));
    QCOMPARE(heard.take(), QStringList {"updateVehicleComText(['B'])"});
}

void VelVehicleGroupCmdTextsTest::announcesAnEmptyLabelListEachTime()
{
    VelVehicleGroupCmd group;
    Announcements heard(&group);
    group.onVehicleCustomLabel(bytes("41"));
    group.onVehicleCustomLabel(bytes("41"));
    QCOMPARE(heard.take(), (QStringList {"updateVehicleComText([])", "updateVehicleComText([])"}));
}

void VelVehicleGroupCmdTextsTest::logsTheLabels()
{
    VelVehicleGroupCmd group;
    LogRecorder log;
    group.onVehicleCustomLabel(bytes("41 00"));
    QCOMPARE(log.messages("[DBG]"), (QStringList {"(\"A\")", "(\"A\")"}));
    group.onVehicleCustomLabel(bytes("41 00"));
    QCOMPARE(log.messages("[DBG]"), (QStringList {"(\"A\")", "(\"A\")", "(\"A\")"}));
}

QTEST_GUILESS_MAIN(VelVehicleGroupCmdTextsTest)
#include "tst_velvehiclegroupcmd_texts.moc"
