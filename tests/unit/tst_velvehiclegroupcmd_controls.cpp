#include "announcements.h"
#include "hexbytes.h"
#include "logrecorder.h"
#include "sentframes.h"

#include "canbusdatamap.h"
#include "canbusplayer.h"
#include "velvehiclegroupcmd.h"

#include <QtTest/QTest>

using namespace canbus;

namespace {

/// The last frame of each category had an id of its own; that of the vehicle is to be given.
void receiveIds(const QByteArray &vehicleId)
{
    CanBusDataMap::instance()->setData(3, {bytes("13")});
    CanBusDataMap::instance()->setData(4, {bytes("14")});
    CanBusDataMap::instance()->setData(5, {vehicleId, bytes("02"), bytes("00")});
    CanBusDataMap::instance()->setData(6, {bytes("16")});
}

} // namespace

class VelVehicleGroupCmdControlsTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    // First: the vehicle has no id yet.
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

void VelVehicleGroupCmdControlsTest::sendsIdZeroBeforeTheFirstFrame()
{
    SentFrames sent;
    VelVehicleGroupCmd::instance()->checkEngine();
    QCOMPARE(sent.take(), QList<QByteArray> {bytes("9f 02 00 95 00 01 01 95 9f 03")});
}

void VelVehicleGroupCmdControlsTest::sendsTheCommandOfEachControl_data()
{
    QTest::addColumn<QByteArray>("control");
    QTest::addColumn<QByteArray>("frame");

    const auto row = [](const char *control, const char *frame) {
        QTest::newRow(control) << QByteArray(control) << bytes(frame);
    };
    row("requestVehicleInfo", "9f 02 10 97 00 03 84 9f 03");
    row("settings", "9f 02 10 92 00 00 82 9f 03");
    row("checkEngine", "9f 02 10 95 00 01 01 85 9f 03");
    row("customControl1", "9f 02 10 95 00 02 01 86 9f 03");
    row("customControl2", "9f 02 10 95 00 03 01 87 9f 03");
}

void VelVehicleGroupCmdControlsTest::sendsTheCommandOfEachControl()
{
    QFETCH(QByteArray, control);
    QFETCH(QByteArray, frame);

    receiveIds(bytes("10"));
    SentFrames sent;
    QVERIFY(QMetaObject::invokeMethod(VelVehicleGroupCmd::instance(), control));
    QCOMPARE(sent.take(), QList<QByteArray> {frame});
}

void VelVehicleGroupCmdControlsTest::doublesTheEscapeByteInIdAndCheckByte_data()
{
    QTest::addColumn<QByteArray>("id");
    QTest::addColumn<QByteArray>("frame");

    QTest::newRow("id 9f") << bytes("9f") << bytes("9f 02 9f9f 95 00 01 01 0a 9f 03");
    QTest::newRow("check byte 9f") << bytes("0a") << bytes("9f 02 0a 95 00 01 01 9f9f 9f 03");
}

void VelVehicleGroupCmdControlsTest::doublesTheEscapeByteInIdAndCheckByte()
{
    QFETCH(QByteArray, id);
    QFETCH(QByteArray, frame);

    receiveIds(id);
    SentFrames sent;
    VelVehicleGroupCmd::instance()->checkEngine();
    QCOMPARE(sent.take(), QList<QByteArray> {frame});
}

void VelVehicleGroupCmdControlsTest::takesTheFirstByteOfTheId()
{
    receiveIds(bytes("10 45"));
    SentFrames sent;
    VelVehicleGroupCmd::instance()->settings();
    QCOMPARE(sent.take(), QList<QByteArray> {bytes("9f 02 10 92 00 00 82 9f 03")});
}

void VelVehicleGroupCmdControlsTest::takesTheIdOfTheLatestFrame()
{
    receiveIds(bytes("10"));
    receiveIds(bytes("11"));
    SentFrames sent;
    VelVehicleGroupCmd::instance()->settings();
    QCOMPARE(sent.take(), QList<QByteArray> {bytes("9f 02 11 92 00 00 83 9f 03")});
}

void VelVehicleGroupCmdControlsTest::sendsOneFrameForEachCall()
{
    const QByteArray frame = bytes("9f 02 10 95 00 02 01 86 9f 03");
    receiveIds(bytes("10"));
    SentFrames sent;
    VelVehicleGroupCmd::instance()->customControl1();
    VelVehicleGroupCmd::instance()->customControl1();
    QCOMPARE(sent.take(), (QList<QByteArray> {frame, frame}));
}

void VelVehicleGroupCmdControlsTest::logsIdCheckByteAndFrameBeforeItSends()
{
    receiveIds(bytes("10"));
    LogRecorder log;
    QStringList before;
    const auto connection = connect(CanBusPlayer::instance(), &CanBusPlayer::sendCmdData,
                                    [&] { before = log.messages("[DBG]"); });
    VelVehicleGroupCmd::instance()->checkEngine();
    disconnect(connection);

    const QStringList expected {"10", "85", "9f021095000101859f03"};
    QCOMPARE(before, expected);
    QCOMPARE(log.messages("[DBG]"), expected);
    QCOMPARE(log.messages("[ERR]"), QStringList());
    for (const LogLine &line : log.lines())
        QVERIFY2(line.text.contains("::checkEngine() "), qPrintable(line.text));
}

void VelVehicleGroupCmdControlsTest::announcesNothing()
{
    receiveIds(bytes("10"));
    VelVehicleGroupCmd group;
    Announcements heard(&group);
    group.requestVehicleInfo();
    group.settings();
    group.checkEngine();
    group.customControl1();
    group.customControl2();
    QCOMPARE(heard.take(), QStringList());
}

QTEST_GUILESS_MAIN(VelVehicleGroupCmdControlsTest)
#include "tst_velvehiclegroupcmd_controls.moc"
