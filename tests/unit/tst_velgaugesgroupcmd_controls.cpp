#include "announcements.h"
#include "hexbytes.h"
#include "logrecorder.h"
#include "sentframes.h"

#include "canbusdatamap.h"
#include "canbusplayer.h"
#include "velgaugesgroupcmd.h"

#include <QtTest/QTest>

using namespace canbus;

namespace {

/// The last frame of each category had an id of its own; that of the gauges is to be given.
void receiveIds(const QByteArray &gaugesId)
{
    CanBusDataMap::instance()->setData(3, {bytes("13")});
    CanBusDataMap::instance()->setData(4, {gaugesId, bytes("05"), bytes("00")});
    CanBusDataMap::instance()->setData(5, {bytes("15")});
    CanBusDataMap::instance()->setData(6, {bytes("16")});
}

} // namespace

class VelGaugesGroupCmdControlsTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    // First: the gauges have no id yet.
    void sendsIdZeroBeforeTheFirstFrame();
    void sendsTheCommandOfEachControl_data();
    void sendsTheCommandOfEachControl();
    void sendsPressAndReleaseOfEachGauge_data();
    void sendsPressAndReleaseOfEachGauge();
    void doublesTheEscapeByteInIdAndCheckByte_data();
    void doublesTheEscapeByteInIdAndCheckByte();
    void takesTheFirstByteOfTheId();
    void takesTheIdOfTheLatestFrame();
    void sendsOneFrameForEachCall();
    void logsIdCheckByteAndFrameBeforeItSends();
    void leavesTheGaugesAlone();
};

void VelGaugesGroupCmdControlsTest::sendsIdZeroBeforeTheFirstFrame()
{
    SentFrames sent;
    VelGaugesGroupCmd::instance()->Gauge3_TopRight(true);
    QCOMPARE(sent.take(), QList<QByteArray> {bytes("9f 02 00 94 00 03 01 96 9f 03")});
}

void VelGaugesGroupCmdControlsTest::sendsTheCommandOfEachControl_data()
{
    QTest::addColumn<QByteArray>("control");
    QTest::addColumn<QByteArray>("frame");

    const auto row = [](const char *control, const char *frame) {
        QTest::newRow(control) << QByteArray(control) << bytes(frame);
    };
    row("requestGaugesInfo", "9f 02 23 97 00 02 b6 9f 03");
    row("settings", "9f 02 23 92 00 00 b1 9f 03");
    row("customControl1", "9f 02 23 94 00 06 01 b0 9f 03");
    row("customControl2", "9f 02 23 94 00 07 01 b1 9f 03");
}

void VelGaugesGroupCmdControlsTest::sendsTheCommandOfEachControl()
{
    QFETCH(QByteArray, control);
    QFETCH(QByteArray, frame);

    receiveIds(bytes("23"));
    SentFrames sent;
    QVERIFY(QMetaObject::invokeMethod(VelGaugesGroupCmd::instance(), control));
    QCOMPARE(sent.take(), QList<QByteArray> {frame});
}

void VelGaugesGroupCmdControlsTest::sendsPressAndReleaseOfEachGauge_data()
{
    QTest::addColumn<QByteArray>("control");
    QTest::addColumn<QByteArray>("press");
    QTest::addColumn<QByteArray>("release");

    const auto row = [](const char *control, const char *press, const char *release) {
        QTest::newRow(control) << QByteArray(control) << bytes(press) << bytes(release);
    };
    row("Gauge1_CenterGauge", "9f 02 23 94 00 01 01 b7 9f 03", "9f 02 23 94 00 01 00 b6 9f 03");
    row("Gauge2_TopLeft", "9f 02 23 94 00 02 01 b4 9f 03", "9f 02 23 94 00 02 00 b5 9f 03");
    row("Gauge3_TopRight", "9f 02 23 94 00 03 01 b5 9f 03", "9f 02 23 94 00 03 00 b4 9f 03");
    row("Gauge4_BottomLeft", "9f 02 23 94 00 04 01 b2 9f 03", "9f 02 23 94 00 04 00 b3 9f 03");
    row("Gauge5_BottomRight", "9f 02 23 94 00 05 01 b3 9f 03", "9f 02 23 94 00 05 00 b2 9f 03");
}

void VelGaugesGroupCmdControlsTest::sendsPressAndReleaseOfEachGauge()
{
    QFETCH(QByteArray, control);
    QFETCH(QByteArray, press);
    QFETCH(QByteArray, release);

    receiveIds(bytes("23"));
    SentFrames sent;
    QVERIFY(QMetaObject::invokeMethod(VelGaugesGroupCmd::instance(), control, Q_ARG(bool, true)));
    QCOMPARE(sent.take(), QList<QByteArray> {press});
    QVERIFY(QMetaObject::invokeMethod(VelGaugesGroupCmd::instance(), control, Q_ARG(bool, false)));
    QCOMPARE(sent.take(), QList<QByteArray> {release});
}

void VelGaugesGroupCmdControlsTest::doublesTheEscapeByteInIdAndCheckByte_data()
{
    QTest::addColumn<QByteArray>("id");
    QTest::addColumn<QByteArray>("frame");

    QTest::newRow("id 9f") << bytes("9f") << bytes("9f 02 9f9f 97 00 02 0a 9f 03");
    QTest::newRow("check byte 9f") << bytes("0a") << bytes("9f 02 0a 97 00 02 9f9f 9f 03");
}

void VelGaugesGroupCmdControlsTest::doublesTheEscapeByteInIdAndCheckByte()
{
    QFETCH(QByteArray, id);
    QFETCH(QByteArray, frame);

    receiveIds(id);
    SentFrames sent;
    VelGaugesGroupCmd::instance()->requestGaugesInfo();
    QCOMPARE(sent.take(), QList<QByteArray> {frame});
}

void VelGaugesGroupCmdControlsTest::takesTheFirstByteOfTheId()
{
    receiveIds(bytes("23 45"));
    SentFrames sent;
    VelGaugesGroupCmd::instance()->settings();
    QCOMPARE(sent.take(), QList<QByteArray> {bytes("9f 02 23 92 00 00 b1 9f 03")});
}

void VelGaugesGroupCmdControlsTest::takesTheIdOfTheLatestFrame()
{
    receiveIds(bytes("23"));
    receiveIds(bytes("24"));
    SentFrames sent;
    VelGaugesGroupCmd::instance()->settings();
    QCOMPARE(sent.take(), QList<QByteArray> {bytes("9f 02 24 92 00 00 b6 9f 03")});
}

void VelGaugesGroupCmdControlsTest::sendsOneFrameForEachCall()
{
    const QByteArray frame = bytes("9f 02 23 94 00 06 01 b0 9f 03");
    receiveIds(bytes("23"));
    SentFrames sent;
    VelGaugesGroupCmd::instance()->customControl1();
    VelGaugesGroupCmd::instance()->customControl1();
    QCOMPARE(sent.take(), (QList<QByteArray> {frame, frame}));
}

void VelGaugesGroupCmdControlsTest::logsIdCheckByteAndFrameBeforeItSends()
{
    receiveIds(bytes("23"));
    LogRecorder log;
    QStringList before;
    const auto connection = connect(CanBusPlayer::instance(), &CanBusPlayer::sendCmdData,
                                    [&] { before = log.messages("[DBG]"); });
    VelGaugesGroupCmd::instance()->Gauge1_CenterGauge(true);
    disconnect(connection);

    const QStringList expected {"23", "b7", "9f022394000101b79f03"};
    QCOMPARE(before, expected);
    QCOMPARE(log.messages("[DBG]"), expected);
    QCOMPARE(log.messages("[ERR]"), QStringList());
    for (const LogLine &line : log.lines())
        QVERIFY2(line.text.contains("::Gauge1_CenterGauge(bool) "), qPrintable(line.text));
}

void VelGaugesGroupCmdControlsTest::leavesTheGaugesAlone()
{
    receiveIds(bytes("23"));
    VelGaugesGroupCmd group;
    Announcements heard(&group);
    group.requestGaugesInfo();
    group.Gauge1_CenterGauge(true);
    group.customControl2();
    QCOMPARE(heard.take(), QStringList());

    // The throttle has not begun: the next change is announced at once.
    group.handleGaugeShift(1);
    QCOMPARE(heard.take("updateGaugeShift"), QStringList {"updateGaugeShift(true)"});
}

QTEST_GUILESS_MAIN(VelGaugesGroupCmdControlsTest)
#include "tst_velgaugesgroupcmd_controls.moc"
