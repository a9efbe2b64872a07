#include "announcements.h"
#include "hexbytes.h"
#include "logrecorder.h"

#include "velgaugesgroupcmd.h"

#include <QtTest/QTest>

using Decoder = void (canbus::VelGaugesGroupCmd::*)(QByteArray);
Q_DECLARE_METATYPE(Decoder)

using namespace canbus;

class VelGaugesGroupCmdTextsTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void readsTheType_data();
    void readsTheType();
    void announcesTheTypeEachTime();
    void readsTheTitle_data();
    void readsTheTitle();
    void announcesATitleOnlyWhenItChanges();
    void announcesAnEmptyTitleEachTime();
    void announcesATitleThatCleaningAltersEachTime();
    void comparesTheTitleWithTheCleanedOne();
    void logsTheType();

    void readsAListOfTexts_data();
    void readsAListOfTexts();
    void treatsEachListTheSame_data();
    void treatsEachListTheSame();
};

void VelGaugesGroupCmdTextsTest::readsTheType_data()
{
    QTest::addColumn<QByteArray>("payload");
    QTest::addColumn<QString>("type");

    QTest::newRow("05") << bytes("05 00") << "{0: true, 1: false, 2: true, 3: false}";
    QTest::newRow("00") << bytes("00 00") << "{0: false, 1: false, 2: false, 3: false}";
    QTest::newRow("bit 0") << bytes("01 00") << "{0: true, 1: false, 2: false, 3: false}";
    QTest::newRow("bit 1") << bytes("02 00") << "{0: false, 1: true, 2: false, 3: false}";
    QTest::newRow("bit 2") << bytes("04 00") << "{0: false, 1: false, 2: true, 3: false}";
    QTest::newRow("bit 3") << bytes("08 00") << "{0: false, 1: false, 2: false, 3: true}";
    QTest::newRow("bits 4 to 7 are ignored") << bytes("f0 00") << "{0: false, 1: false, 2: false, 3: false}";
}

void VelGaugesGroupCmdTextsTest::readsTheType()
{
    QFETCH(QByteArray, payload);
    QFETCH(QString, type);

    VelGaugesGroupCmd group;
    Announcements heard(&group);
    group.handleGaugeType(payload);
    QCOMPARE(heard.take(), (QStringList {"updateGaugeTopText('')", "updateGaugeType(" + type + ")"}));
    group.getGaugesInfo();
    QCOMPARE(heard.take("updateGaugeType"), QStringList {"updateGaugeType(" + type + ")"});
}

void VelGaugesGroupCmdTextsTest::announcesTheTypeEachTime()
{
    const QString type = "updateGaugeType({0: true, 1: false, 2: true, 3: false})";
    VelGaugesGroupCmd group;
    Announcements heard(&group);
    group.handleGaugeType(bytes("05 41"));
    group.handleGaugeType(bytes("05 41"));
    group.handleGaugeType(bytes("05 41"));
    QCOMPARE(heard.take(), (QStringList {"updateGaugeTopText('A')", type, type, type}));
}

void VelGaugesGroupCmdTextsTest::readsTheTitle_data()
{
    QTest::addColumn<QByteArray>("payload");
    QTest::addColumn<QString>("title");

    QTest::newRow("all bytes behind the type") << bytes("41 42 43") << "BC";
    QTest::newRow("up to the zero byte") << bytes("00 41 42 00 43") << "AB";
    QTest::newRow("one byte") << bytes("00 41") << "A";
    QTest::newRow("a zero byte alone") << bytes("00 00") << "";
    QTest::newRow("nothing before the zero byte") << bytes("00 00 41") << "";
    QTest::newRow("UTF-8") << bytes("00 c3a4 e4bda0 00") << QString::fromUtf8("\xc3\xa4\xe4\xbd\xa0");
    QTest::newRow("without what is no UTF-8") << bytes("00 41 ff 42 00") << "AB";
    QTest::newRow("nothing but what is no UTF-8") << bytes("00 ff") << "";
    QTest::newRow("without a replacement character that was sent") << bytes("00 41 efbfbd 42") << "AB";
}

void VelGaugesGroupCmdTextsTest::readsTheTitle()
{
    QFETCH(QByteArray, payload);
    QFETCH(QString, title);

    VelGaugesGroupCmd group;
    Announcements heard(&group);
    group.handleGaugeType(payload);
    QCOMPARE(heard.take("updateGaugeTopText"), QStringList {"updateGaugeTopText('" + title + "')"});
}

void VelGaugesGroupCmdTextsTest::announcesATitleOnlyWhenItChanges()
{
    VelGaugesGroupCmd group;
    group.handleGaugeType(bytes("00 41 42"));
    Announcements heard(&group);
    group.handleGaugeType(bytes("00 41 42"));
    group.handleGaugeType(bytes("0f 41 42 00 43"));
    QCOMPARE(heard.take("updateGaugeTopText"), QStringList());
    group.handleGaugeType(bytes("00 41 43"));
    QCOMPARE(heard.take("updateGaugeTopText"), QStringList {"updateGaugeTopText('AC')"});
}

void VelGaugesGroupCmdTextsTest::announcesAnEmptyTitleEachTime()
{
    VelGaugesGroupCmd group;
    Announcements heard(&group);
    group.handleGaugeType(bytes("00 00"));
    group.handleGaugeType(bytes("00 00"));
    QCOMPARE(heard.take("updateGaugeTopText"),
             (QStringList {"updateGaugeTopText('')", "updateGaugeTopText('')"}));
}

void VelGaugesGroupCmdTextsTest::announcesATitleThatCleaningAltersEachTime()
{
    VelGaugesGroupCmd group;
    Announcements heard(&group);
    group.handleGaugeType(bytes("00 41 ff"));
    group.handleGaugeType(bytes("00 41 ff"));
    QCOMPARE(heard.take("updateGaugeTopText"),
             (QStringList {"updateGaugeTopText('A')", "updateGaugeTopText('A')"}));
    group.getGaugesInfo();
    QCOMPARE(heard.take("updateGaugeTopText"), QStringList {"updateGaugeTopText('A')"});
}

void VelGaugesGroupCmdTextsTest::comparesTheTitleWithTheCleanedOne()
{
    VelGaugesGroupCmd group;
    group.handleGaugeType(bytes("00 41 ff"));
    Announcements heard(&group);
    group.handleGaugeType(bytes("00 41"));
    QCOMPARE(heard.take("updateGaugeTopText"), QStringList());
}

void VelGaugesGroupCmdTextsTest::logsTheType()
{
    VelGaugesGroupCmd group;
    LogRecorder log;
    group.handleGaugeType(bytes("05 41"));
    QCOMPARE(log.messages("[DBG]").mid(0, 4),
             (QStringList {"0 : true", "1 : false", "2 : true", "3 : false"}));
    QCOMPARE(log.messages("[ERR]"), QStringList());
}

void VelGaugesGroupCmdTextsTest::readsAListOfTexts_data()
{
    QTest::addColumn<QByteArray>("payload");
    QTest::addColumn<QString>("texts");

    QTest::newRow("two texts") << bytes("41 42 00 43 00") << "['AB', 'C']";
    QTest::newRow("an empty text") << bytes("00") << "['']";
    QTest::newRow("an empty text between two") << bytes("41 00 00 42 00") << "['A', '', 'B']";
    QTest::newRow("without bytes behind the last zero byte") << bytes("41 00 00 42") << "['A', '']";
    QTest::newRow("no zero byte") << bytes("41 42") << "[]";
    QTest::newRow("without what is no UTF-8") << bytes("41 ff 42 00 ff 00") << "['AB', '']";
}

void VelGaugesGroupCmdTextsTest::readsAListOfTexts()
{
    QFETCH(QByteArray, payload);
    QFETCH(QString, texts);

    VelGaugesGroupCmd group;
    Announcements heard(&group);
    group.handleGaugeCustomLabel(payload);
    group.handleGaugeTopLeft_RightText(payload);
    group.handleGaugeBottomLeft_RightText(payload);
    QCOMPARE(heard.take(),
             (QStringList {"updateGaugeComText(" + texts + ")", "updateGaugeTopLRText(" + texts + ")",
                           "updateGaugeBottomLRText(" + texts + ")"}));
}

void VelGaugesGroupCmdTextsTest::treatsEachListTheSame_data()
{
    QTest::addColumn<Decoder>("decoder");
    QTest::addColumn<QString>("signal");

    QTest::newRow("labels") << Decoder(&VelGaugesGroupCmd::handleGaugeCustomLabel) << "updateGaugeComText";
    QTest::newRow("top texts") << Decoder(&VelGaugesGroupCmd::handleGaugeTopLeft_RightText)
                               << "updateGaugeTopLRText";
    QTest::newRow("bottom texts") << Decoder(&VelGaugesGroupCmd::handleGaugeBottomLeft_RightText)
                                  << "updateGaugeBottomLRText";
}

void VelGaugesGroupCmdTextsTest::treatsEachListTheSame()
{
    QFETCH(Decoder, decoder);
    QFETCH(QString, signal);

    VelGaugesGroupCmd group;
    Announcements heard(&group);
    LogRecorder log;
    // Unchanged ones are neither announced nor logged.
    (group.*decoder)(bytes("41 00"));
    (group.*decoder)(bytes("41 00"));
    QCOMPARE(heard.take(), QStringList {signal + "(['A'])"});
    QCOMPARE(log.messages("[DBG]"), QStringList {"(\"A\")"});
    (group.*decoder)(bytes("41 00 42 00"));
    QCOMPARE(heard.take(), QStringList {signal + "(['A', 'B'])"});
    // Empty ones are announced each time.
    (group.*decoder)(bytes("41"));
    (group.*decoder)(bytes("41"));
    QCOMPARE(heard.take(), (QStringList {signal + "([])", signal + "([])"}));
    QCOMPARE(log.messages("[DBG]"), (QStringList {"(\"A\")", "(\"A\", \"B\")", "()", "()"}));
}

QTEST_GUILESS_MAIN(VelGaugesGroupCmdTextsTest)
#include "tst_velgaugesgroupcmd_texts.moc"
