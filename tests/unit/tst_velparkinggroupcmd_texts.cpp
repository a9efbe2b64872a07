#include "announcements.h"
#include "hexbytes.h"
#include "logrecorder.h"

#include "velparkinggroupcmd.h"

#include <QtTest/QTest>

using namespace canbus;

class VelParkingGroupCmdTextsTest : public QObject {
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

void VelParkingGroupCmdTextsTest::readsTheTitle_data()
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

void VelParkingGroupCmdTextsTest::readsTheTitle()
{
    QFETCH(QByteArray, payload);
    QFETCH(QString, title);

    VelParkingGroupCmd group;
    Announcements heard(&group);
    group.onParkTopText(payload);
    QCOMPARE(heard.take(), QStringList {"updateParkTopText('" + title + "')"});
}

void VelParkingGroupCmdTextsTest::announcesATitleOnlyWhenItChanges()
{
    VelParkingGroupCmd group;
    group.onParkTopText(bytes("41 42"));
    Announcements heard(&group);
    group.onParkTopText(bytes("41 42"));
    group.onParkTopText(bytes("41 42 00 43"));
    QCOMPARE(heard.take(), QStringList());
    group.onParkTopText(bytes("41 43"));
    QCOMPARE(heard.take(), QStringList {"updateParkTopText('AC')"});
}

void VelParkingGroupCmdTextsTest::announcesAnEmptyTitleEachTime()
{
    VelParkingGroupCmd group;
    Announcements heard(&group);
    group.onParkTopText(bytes("00"));
    group.onParkTopText(bytes("00"));
    QCOMPARE(heard.take(), (QStringList {"updateParkTopText('')", "updateParkTopText('')"}));
}

void VelParkingGroupCmdTextsTest::announcesATitleThatCleaningAltersEachTime()
{
    VelParkingGroupCmd group;
    Announcements heard(&group);
    group.onParkTopText(bytes("41 ff"));
    group.onParkTopText(bytes("41 ff"));
    QCOMPARE(heard.take(), (QStringList {"updateParkTopText('A')", "updateParkTopText('A')"}));
}

void VelParkingGroupCmdTextsTest::comparesTheTitleWithTheCleanedOne()
{
    VelParkingGroupCmd group;
    group.onParkTopText(bytes("41 ff"));
    Announcements heard(&group);
    group.onParkTopText(bytes("41"));
    QCOMPARE(heard.take(), QStringList());
}

void VelParkingGroupCmdTextsTest::logsTheTitle()
{
    VelParkingGroupCmd group;
    LogRecorder log;
    group.onParkTopText(bytes("41 ff 00"));
    QCOMPARE(log.messages("[DBG]"), (QStringList {"41ff00", "\"A\""}));
    group.onParkTopText(bytes("41"));
    QCOMPARE(log.messages("[DBG]"), (QStringList {"41ff00", "\"A\"", "41"}));
    QCOMPARE(log.messages("[ERR]"), QStringList());
}

void VelParkingGroupCmdTextsTest::readsTheLabels_data()
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

void VelParkingGroupCmdTextsTest::readsTheLabels()
{
    QFETCH(QByteArray, payload);
    QFETCH(QString, labels);

    VelParkingGroupCmd group;
    Announcements heard(&group);
    group.onParkCustomLabel(payload);
    QCOMPARE(heard.take(), QStringList {"updateParkComText(" + labels + ")"});
}

void VelParkingGroupCmdTextsTest::announcesLabelsOnlyWhenTheyChange()
{
    VelParkingGroupCmd group;
    group.onParkCustomLabel(bytes("41 00"));
    Announcements heard(&group);
    group.onParkCustomLabel(bytes("41 00"));
    QCOMPARE(heard.take(), QStringList());
    group.onParkCustomLabel(bytes("41 00 42 00"));
    QCOMPARE(heard.take(), QStringList {"updateParkComText(['A', 'B'])"});
    group.onParkCustomLabel(bytes("42 00"));
    QCOMPARE(heard.take(), QStringList {"updateParkComText(['B'])"});
}

void VelParkingGroupCmdTextsTest::announcesAnEmptyLabelListEachTime()
{
    VelParkingGroupCmd group;
    Announcements heard(&group);
    group.onParkCustomLabel(bytes("41"));
    group.onParkCustomLabel(bytes("41"));
    QCOMPARE(heard.take(), (QStringList {"updateParkComText([])", "updateParkComText([])"}));
}

void VelParkingGroupCmdTextsTest::logsTheLabels()
{
    VelParkingGroupCmd group;
    LogRecorder log;
    group.onParkCustomLabel(bytes("41 00"));
    QCOMPARE(log.messages("[DBG]"), (QStringList {"(\"A\")", "(\"A\")"}));
    group.onParkCustomLabel(bytes("41 00"));
    QCOMPARE(log.messages("[DBG]"), (QStringList {"(\"A\")", "(\"A\")", "(\"A\")"}));
}

QTEST_GUILESS_MAIN(VelParkingGroupCmdTextsTest)
#include "tst_velparkinggroupcmd_texts.moc"
