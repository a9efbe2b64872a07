#include "announcements.h"
#include "hexbytes.h"
#include "logrecorder.h"

#include "velgaugesgroupcmd.h"

#include <QtTest/QTest>

using namespace canbus;

namespace {

// A scale of eleven entries, "00" and "001" to "010": the 32 bytes in front of the centre texts.
const char kFullScale[] = "3030 303031 303032 303033 303034 303035 303036 303037 303038 303039 303130";
const QString kFullScaleAnnounced =
    "updateGaugeScale(['00', '001', '002', '003', '004', '005', '006', '007', '008', '009', '010'])";

/// A payload with the full scale and these bytes behind it.
QByteArray behindFullScale(const char *centerTexts)
{
    return bytes(kFullScale) + bytes(centerTexts);
}

} // namespace

class VelGaugesGroupCmdScaleTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void readsTheScale_data();
    void readsTheScale();
    void readsTheCenterTextsBehindTheScale_data();
    void readsTheCenterTextsBehindTheScale();
    void announcesTheScaleOnlyWhenItChanges();
    void announcesTheCenterTextsOnlyWhenTheyChange();
    void announcesEmptyCenterTextsEachTime();
    void logsTheScale();
};

void VelGaugesGroupCmdScaleTest::readsTheScale_data()
{
    QTest::addColumn<QByteArray>("payload");
    QTest::addColumn<QString>("scale");

    const auto row = [](const char *name, const char *payload, const QString &scale) {
        QTest::newRow(name) << bytes(payload) << scale;
    };
    row("2 bytes", "3031", "['01']");
    row("3 bytes", "3031 32", "['01']");
    row("4 bytes", "3031 3233", "['01']");
    row("5 bytes", "3031 323334", "['01', '234']");
    row("7 bytes", "3031 323334 3536", "['01', '234']");
    row("8 bytes", "3031 323334 353637", "['01', '234', '567']");
    row("31 bytes", "3030 303031 303032 303033 303034 303035 303036 303037 303038 303039 3031",
        "['00', '001', '002', '003', '004', '005', '006', '007', '008', '009']");
    row("32 bytes", "3030 303031 303032 303033 303034 303035 303036 303037 303038 303039 303130",
        "['00', '001', '002', '003', '004', '005', '006', '007', '008', '009', '010']");
    row("35 bytes", "3030 303031 303032 303033 303034 303035 303036 303037 303038 303039 303130 303131",
        "['00', '001', '002', '003', '004', '005', '006', '007', '008', '009', '010']");
    row("entries up to their zero byte", "3000 313200 330034 000000", "['0', '12', '3', '']");
    row("blanks stay", "2030 202031", "[' 0', '  1']");
    row("UTF-8", "c2b0 e282ac", QString::fromUtf8("['\xc2\xb0', '\xe2\x82\xac']"));
    row("what is no UTF-8 is not taken out", "ff30 31ff32 33efbf",
        QString::fromUtf8("['\xef\xbf\xbd"
                          "0', '1\xef\xbf\xbd"
                          "2', '3\xef\xbf\xbd\xef\xbf\xbd']"));
}

void VelGaugesGroupCmdScaleTest::readsTheScale()
{
    QFETCH(QByteArray, payload);
    QFETCH(QString, scale);

    VelGaugesGroupCmd group;
    Announcements heard(&group);
    group.handleGaugeScaleAndCenterText(payload);
    QCOMPARE(heard.take(), (QStringList {"updateGaugeScale(" + scale + ")", "updateGaugeCenterText([])"}));
}

void VelGaugesGroupCmdScaleTest::readsTheCenterTextsBehindTheScale_data()
{
    QTest::addColumn<QByteArray>("payload");
    QTest::addColumn<QString>("texts");

    QTest::newRow("two texts") << behindFullScale("41 42 00 43 00") << "['AB', 'C']";
    QTest::newRow("an empty text") << behindFullScale("00") << "['']";
    QTest::newRow("an empty text between two") << behindFullScale("41 00 00 42 00") << "['A', '', 'B']";
    QTest::newRow("nothing behind the scale") << behindFullScale("") << "[]";
    QTest::newRow("no zero byte") << behindFullScale("41 42 43") << "[]";
    QTest::newRow("without bytes behind the last zero byte") << behindFullScale("41 00 42") << "['A']";
    QTest::newRow("without what is no UTF-8") << behindFullScale("41 ff 42 00 ff 00") << "['AB', '']";
    QTest::newRow("UTF-8") << behindFullScale("c2b0 43 00")
                           << QString::fromUtf8("['\xc2\xb0"
                                                "C']");
}

void VelGaugesGroupCmdScaleTest::readsTheCenterTextsBehindTheScale()
{
    QFETCH(QByteArray, payload);
    QFETCH(QString, texts);

    VelGaugesGroupCmd group;
    Announcements heard(&group);
    group.handleGaugeScaleAndCenterText(payload);
    QCOMPARE(heard.take(), (QStringList {kFullScaleAnnounced, "updateGaugeCenterText(" + texts + ")"}));
}

void VelGaugesGroupCmdScaleTest::announcesTheScaleOnlyWhenItChanges()
{
    VelGaugesGroupCmd group;
    group.handleGaugeScaleAndCenterText(behindFullScale("41 00"));
    Announcements heard(&group);
    group.handleGaugeScaleAndCenterText(behindFullScale("41 00"));
    QCOMPARE(heard.take(), QStringList());
    // Only the last entry differs.
    group.handleGaugeScaleAndCenterText(
        bytes("3030 303031 303032 303033 303034 303035 303036 303037 303038 303039 303131 41 00"));
    QCOMPARE(heard.take(),
             QStringList {"updateGaugeScale(['00', '001', '002', '003', '004', '005', '006', '007', "
                          "'008', '009', '011'])"});
}

void VelGaugesGroupCmdScaleTest::announcesTheCenterTextsOnlyWhenTheyChange()
{
    VelGaugesGroupCmd group;
    group.handleGaugeScaleAndCenterText(behindFullScale("41 00"));
    Announcements heard(&group);
    group.handleGaugeScaleAndCenterText(behindFullScale("42 00"));
    QCOMPARE(heard.take(), QStringList {"updateGaugeCenterText(['B'])"});
    group.handleGaugeScaleAndCenterText(behindFullScale("42 00 43"));
    QCOMPARE(heard.take(), QStringList());
    group.handleGaugeScaleAndCenterText(behindFullScale("43"));
    QCOMPARE(heard.take(), QStringList {"updateGaugeCenterText([])"});
}

void VelGaugesGroupCmdScaleTest::announcesEmptyCenterTextsEachTime()
{
    VelGaugesGroupCmd group;
    group.handleGaugeScaleAndCenterText(bytes("3030"));
    Announcements heard(&group);
    group.handleGaugeScaleAndCenterText(bytes("3030"));
    group.handleGaugeScaleAndCenterText(bytes("3030"));
    QCOMPARE(heard.take(), (QStringList {"updateGaugeCenterText([])", "updateGaugeCenterText([])"}));
}

void VelGaugesGroupCmdScaleTest::logsTheScale()
{
    VelGaugesGroupCmd group;
    LogRecorder log;
    group.handleGaugeScaleAndCenterText(bytes("3030 303031"));
    group.handleGaugeScaleAndCenterText(bytes("3030 303031"));
    QCOMPARE(log.messages("[DBG]").filter("Scale value:"), QStringList {"Scale value: (\"00\", \"001\")"});
    QCOMPARE(log.messages("[ERR]"), QStringList());
}

QTEST_GUILESS_MAIN(VelGaugesGroupCmdScaleTest)
#include "tst_velgaugesgroupcmd_scale.moc"
