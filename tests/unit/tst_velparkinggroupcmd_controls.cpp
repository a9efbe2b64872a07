#include "announcements.h"
#include "hexbytes.h"
#include "logrecorder.h"
#include "sentframes.h"

#include "canbusdatamap.h"
#include "canbusplayer.h"
#include "velparkinggroupcmd.h"

#include <QtTest/QTest>

using namespace canbus;

namespace {

/// The last frame of each category had an id of its own; that of the parking assist is to be given.
void receiveIds(const QByteArray &parkingId)
{
    CanBusDataMap::instance()->setData(3, {bytes("13")});
    CanBusDataMap::instance()->setData(4, {bytes("14")});
    CanBusDataMap::instance()->setData(5, {bytes("15")});
    CanBusDataMap::instance()->setData(6, {parkingId, bytes("02"), bytes("00")});
}

} // namespace

class VelParkingGroupCmdControlsTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    // First: the parking assist has no id yet.
    void sendsIdZeroBeforeTheFirstFrame();
    void sendsTheCommandOfEachControl_data();
    void sendsTheCommandOfEachControl();
    void doublesTheEscapeByteInIdAndCheckByte_data();
    void doublesTheEscapeByteInIdAndCheckByte();
    void takesTheFirstByteOfTheId();
    void takesTheIdOfTheLatestFrame();
    void sendsOneFrameForEachCall();
    void logsIdCheckByteAndFrameBeforeItSends();
    void announcesNothing();
};

void VelParkingGroupCmdControlsTest::sendsIdZeroBeforeTheFirstFrame()
{
    SentFrames sent;
    VelParkingGroupCmd::instance()->requestParkInfo();
    QCOMPARE(sent.take(), QList<QByteArray> {bytes("9f 02 00 97 00 04 93 9f 03")});
}

void VelParkingGroupCmdControlsTest::sendsTheCommandOfEachControl_data()
{
    QTest::addColumn<QByteArray>("control");
    QTest::addColumn<QByteArray>("frame");

    const auto row = [](const char *control, const char *frame) {
        QTest::newRow(control) << QByteArray(control) << bytes(frame);
    };
    row("requestParkInfo", "9f 02 31 97 00 04 a2 9f 03");
    row("settings", "9f 02 31 92 00 00 a3 9f 03");
    row("customControl1", "9f 02 31 96 00 01 01 a7 9f 03");
    row("customControl2", "9f 02 31 96 00 02 01 a4 9f 03");
}

void VelParkingGroupCmdControlsTest::sendsTheCommandOfEachControl()
{
    QFETCH(QByteArray, control);
    QFETCH(QByteArray, frame);

    receiveIds(bytes("31"));
    SentFrames sent;
    QVERIFY(QMetaObject::invokeMethod(VelParkingGroupCmd::instance(), control));
    QCOMPARE(sent.take(), QList<QByteArray> {frame});
}

void VelParkingGroupCmdControlsTest::doublesTheEscapeByteInIdAndCheckByte_data()
{
    QTest::addColumn<QByteArray>("id");
    QTest::addColumn<QByteArray>("frame");

    QTest::newRow("id 9f") << bytes("9f") << bytes("9f 02 9f9f 96 00 02 01 0a 9f 03");
    QTest::newRow("check byte 9f") << bytes("0a") << bytes("9f 02 0a 96 00 02 01 9f9f 9f 03");
}

void VelParkingGroupCmdControlsTest::doublesTheEscapeByteInIdAndCheckByte()
{
    QFETCH(QByteArray, id);
    QFETCH(QByteArray, frame);

    receiveIds(id);
    SentFrames sent;
    VelParkingGroupCmd::instance()->customControl2();
    QCOMPARE(sent.take(), QList<QByteArray> {frame});
}

void VelParkingGroupCmdControlsTest::takesTheFirstByteOfTheId()
{
    receiveIds(bytes("31 45"));
    SentFrames sent;
    VelParkingGroupCmd::instance()->settings();
    QCOMPARE(sent.take(), QList<QByteArray> {bytes("9f 02 31 92 00 00 a3 9f 03")});
}

void VelParkingGroupCmdControlsTest::takesTheIdOfTheLatestFrame()
{
    receiveIds(bytes("31"));
    receiveIds(bytes("32"));
    SentFrames sent;
    VelParkingGroupCmd::instance()->settings();
    QCOMPARE(sent.take(), QList<QByteArray> {bytes("9f 02 32 92 00 00 a0 9f 03")});
}

void VelParkingGroupCmdControlsTest::sendsOneFrameForEachCall()
{
    const QByteArray frame = bytes("9f 02 31 96 00 01 01 a7 9f 03");
    receiveIds(bytes("31"));
    SentFrames sent;
    VelParkingGroupCmd::instance()->customControl1();
    VelParkingGroupCmd::instance()->customControl1();
    QCOMPARE(sent.take(), (QList<QByteArray> {frame, frame}));
}

void VelParkingGroupCmdControlsTest::logsIdCheckByteAndFrameBeforeItSends()
{
    receiveIds(bytes("9f"));
    LogRecorder log;
    QStringList before;
    const auto connection = connect(CanBusPlayer::instance(), &CanBusPlayer::sendCmdData,
                                    [&] { before = log.messages("[DBG]"); });
    VelParkingGroupCmd::instance()->customControl2();
    disconnect(connection);

    const QStringList expected {"9f", "a", "9f029f9f960002010a9f03"};
    QCOMPARE(before, expected);
    QCOMPARE(log.messages("[DBG]"), expected);
    QCOMPARE(log.messages("[ERR]"), QStringList());
    for (const LogLine &line : log.lines())
        QVERIFY2(line.text.contains("::customControl2() "), qPrintable(line.text));
}

void VelParkingGroupCmdControlsTest::announcesNothing()
{
    receiveIds(bytes("31"));
    VelParkingGroupCmd group;
    Announcements heard(&group);
    group.requestParkInfo();
    group.settings();
    group.customControl1();
    group.customControl2();
    QCOMPARE(heard.take(), QStringList());
}

QTEST_GUILESS_MAIN(VelParkingGroupCmdControlsTest)
#include "tst_velparkinggroupcmd_controls.moc"
