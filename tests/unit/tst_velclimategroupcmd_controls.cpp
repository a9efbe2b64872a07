#include "velclimategroupcmd.h"

#include "player/canbusdatamap.h"
#include "player/canbusplayer.h"

#include <hexbytes.h>
#include <logrecorder.h>
#include <sentframes.h>

#include <QtTest/QTest>

using namespace canbus;

namespace {

constexpr int kClimate = 3;

VelClimateGroupCmd *group()
{
    return VelClimateGroupCmd::instance();
}

void receiveFrameWithId(const QByteArray &id)
{
    CanBusDataMap::instance()->setData(kClimate, {id, bytes("02"), bytes("00")});
}

/// The operations that have written log lines, each with its message.
QStringList operationsIn(const LogRecorder &log)
{
    QStringList found;
    for (const LogLine &line : log.lines()) {
        const QString signature = line.text.section(QStringLiteral("void canbus::VelClimateGroupCmd::"), 1);
        found += signature.section(')', 0, 0) + ')' + line.text.section(QStringLiteral(" --"), 1);
    }
    return found;
}

} // namespace

class TestClimateControls : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init();

    void sendsIdZeroBeforeTheFirstClimateFrame();
    void tapsSendAPress_data();
    void tapsSendAPress();
    void buttonsSendPressAndRelease_data();
    void buttonsSendPressAndRelease();
    void valuesAreSentWithAPress_data();
    void valuesAreSentWithAPress();
    void requestsTheClimateState_data();
    void requestsTheClimateState();
    void opensTheSettings_data();
    void opensTheSettings();
    void sendsAnyButton_data();
    void sendsAnyButton();
    void fillsInTheArgumentsThatAreLeftOut();
    void takesTheFirstByteOfTheId();
    void takesTheIdOfTheLastFrame();
    void isOneObject();
    void logsBeforeItSends_data();
    void logsBeforeItSends();
    void logsAButton();
    void logsTheIdOfAButtonAsHexadecimalText();
    void logsARequestWithTheIdAsHexadecimalText();
    void logsTheSettingsWithTheIdAsItIs();
};

void TestClimateControls::init()
{
    receiveFrameWithId(bytes("21"));
}

void TestClimateControls::sendsIdZeroBeforeTheFirstClimateFrame()
{
    CanBusDataMap::instance()->setData(kClimate, {}); // reads like none
    SentFrames sent;
    group()->acBtn();
    group()->requestClimateInfo();
    group()->settings();
    QCOMPARE(sent.take(),
             (QList<QByteArray> {bytes("9f 02 00 93 00 12 01 00 80 9f 03"),
                                 bytes("9f 02 00 97 00 01 96 9f 03"), bytes("9f 02 00 92 00 00 92 9f 03")}));
}

void TestClimateControls::tapsSendAPress_data()
{
    QTest::addColumn<QByteArray>("frame");
    const auto tap = [](const char *name, const char *frame) { QTest::newRow(name) << bytes(frame); };
    tap("onOff", "9f 02 21 93 00 01 01 00 b2 9f 03");
    tap("leftHeatedSeat", "9f 02 21 93 00 09 01 00 ba 9f 03");
    tap("rightHeatedSeat", "9f 02 21 93 00 0a 01 00 b9 9f 03");
    tap("leftCooledSeat", "9f 02 21 93 00 0b 01 00 b8 9f 03");
    tap("rightCooledSeat", "9f 02 21 93 00 0c 01 00 bf 9f 03");
    tap("autoBtn", "9f 02 21 93 00 0e 01 00 bd 9f 03");
    tap("ventPos", "9f 02 21 93 00 0f 01 00 bc 9f 03");
    tap("recircFresh", "9f 02 21 93 00 10 01 00 a3 9f 03");
    tap("dualBtn", "9f 02 21 93 00 11 01 00 a2 9f 03");
    tap("acBtn", "9f 02 21 93 00 12 01 00 a1 9f 03");
    tap("maxACBtn", "9f 02 21 93 00 13 01 00 a0 9f 03");
    tap("frontDefroster", "9f 02 21 93 00 14 01 00 a7 9f 03");
    tap("rearDefroster", "9f 02 21 93 00 15 01 00 a6 9f 03");
    tap("customControl1", "9f 02 21 93 00 16 01 00 a5 9f 03");
    tap("customControl2", "9f 02 21 93 00 17 01 00 a4 9f 03");
    tap("heatedSteerWheel", "9f 02 21 93 00 18 01 00 ab 9f 03");
}

void TestClimateControls::tapsSendAPress()
{
    QFETCH(QByteArray, frame);
    SentFrames sent;
    QVERIFY(QMetaObject::invokeMethod(group(), QTest::currentDataTag()));
    QCOMPARE(sent.take(), QList<QByteArray> {frame});
}

void TestClimateControls::buttonsSendPressAndRelease_data()
{
    QTest::addColumn<QByteArray>("name");
    QTest::addColumn<bool>("isPress");
    QTest::addColumn<QByteArray>("frame");
    const auto button = [](const char *name, bool isPress, const char *frame) {
        QTest::addRow("%s, %s", name, isPress ? "press" : "release")
            << QByteArray(name) << isPress << bytes(frame);
    };
    button("rearZone", true, "9f 02 21 93 00 02 01 00 b1 9f 03");
    button("rearZone", false, "9f 02 21 93 00 02 00 00 b0 9f 03");
    button("autoMainZoneTempPlus", true, "9f 02 21 93 00 03 01 00 b0 9f 03");
    button("autoMainZoneTempPlus", false, "9f 02 21 93 00 03 00 00 b1 9f 03");
    button("autoMainZoneTempMinus", true, "9f 02 21 93 00 04 01 00 b7 9f 03");
    button("autoMainZoneTempMinus", false, "9f 02 21 93 00 04 00 00 b6 9f 03");
    button("autoSecondZoneTempPlus", true, "9f 02 21 93 00 05 01 00 b6 9f 03");
    button("autoSecondZoneTempPlus", false, "9f 02 21 93 00 05 00 00 b7 9f 03");
    button("autoSecondZoneTempMinus", true, "9f 02 21 93 00 06 01 00 b5 9f 03");
    button("autoSecondZoneTempMinus", false, "9f 02 21 93 00 06 00 00 b4 9f 03");
    button("manualMainZoneTempUp", true, "9f 02 21 93 00 07 01 00 b4 9f 03");
    button("manualMainZoneTempUp", false, "9f 02 21 93 00 07 00 00 b5 9f 03");
    button("manualMainZoneTempDown", true, "9f 02 21 93 00 08 01 00 bb 9f 03");
    button("manualMainZoneTempDown", false, "9f 02 21 93 00 08 00 00 ba 9f 03");
    button("fanSpeedUp", true, "9f 02 21 93 00 19 01 00 aa 9f 03");
    button("fanSpeedUp", false, "9f 02 21 93 00 19 00 00 ab 9f 03");
    button("fanSpeedDown", true, "9f 02 21 93 00 1a 01 00 a9 9f 03");
    button("fanSpeedDown", false, "9f 02 21 93 00 1a 00 00 a8 9f 03");
}

void TestClimateControls::buttonsSendPressAndRelease()
{
    QFETCH(QByteArray, name);
    QFETCH(bool, isPress);
    QFETCH(QByteArray, frame);
    SentFrames sent;
    QVERIFY(QMetaObject::invokeMethod(group(), name.constData(), Q_ARG(bool, isPress)));
    QCOMPARE(sent.take(), QList<QByteArray> {frame});
}

void TestClimateControls::valuesAreSentWithAPress_data()
{
    QTest::addColumn<QByteArray>("name");
    QTest::addColumn<int>("byte");
    QTest::addColumn<QByteArray>("frame");
    const auto value = [](const char *name, int byte, const char *frame) {
        QTest::addRow("%s %02x", name, byte) << QByteArray(name) << byte << bytes(frame);
    };
    value("autoFanDirectValue", 0x00, "9f 02 21 93 00 0d 01 00 be 9f 03");
    value("autoFanDirectValue", 0x37, "9f 02 21 93 00 0d 01 37 89 9f 03");
    value("autoFanDirectValue", 0x9f, "9f 02 21 93 00 0d 01 9f 9f 21 9f 03");
    value("autoFanDirectValue", 0xff, "9f 02 21 93 00 0d 01 ff 41 9f 03");
    value("manualTemp", 0x00, "9f 02 21 93 00 1b 01 00 a8 9f 03");
    value("manualTemp", 0x37, "9f 02 21 93 00 1b 01 37 9f 9f 9f 03");
    value("manualTemp", 0x9f, "9f 02 21 93 00 1b 01 9f 9f 37 9f 03");
    value("manualTemp", 0xff, "9f 02 21 93 00 1b 01 ff 57 9f 03");
    value("manualFanSpeed", 0x00, "9f 02 21 93 00 1c 01 00 af 9f 03");
    value("manualFanSpeed", 0x37, "9f 02 21 93 00 1c 01 37 98 9f 03");
    value("manualFanSpeed", 0x9f, "9f 02 21 93 00 1c 01 9f 9f 30 9f 03");
    value("manualFanSpeed", 0xff, "9f 02 21 93 00 1c 01 ff 50 9f 03");
}

void TestClimateControls::valuesAreSentWithAPress()
{
    QFETCH(QByteArray, name);
    QFETCH(int, byte);
    QFETCH(QByteArray, frame);
    SentFrames sent;
    QVERIFY(QMetaObject::invokeMethod(group(), name.constData(), Q_ARG(char, char(byte))));
    QCOMPARE(sent.take(), QList<QByteArray> {frame});
}

void TestClimateControls::requestsTheClimateState_data()
{
    QTest::addColumn<QByteArray>("id");
    QTest::addColumn<QByteArray>("frame");
    QTest::newRow("an ordinary id") << bytes("21") << bytes("9f 02 21 97 00 01 b7 9f 03");
    QTest::newRow("the id is the escape byte") << bytes("9f") << bytes("9f 02 9f 9f 97 00 01 09 9f 03");
    QTest::newRow("the check byte is the escape byte")
        << bytes("09") << bytes("9f 02 09 97 00 01 9f 9f 9f 03");
    QTest::newRow("id 0") << bytes("00") << bytes("9f 02 00 97 00 01 96 9f 03");
}

void TestClimateControls::requestsTheClimateState()
{
    QFETCH(QByteArray, id);
    QFETCH(QByteArray, frame);
    receiveFrameWithId(id);
    SentFrames sent;
    QVERIFY(QMetaObject::invokeMethod(group(), "requestClimateInfo"));
    QCOMPARE(sent.take(), QList<QByteArray> {frame});
}

void TestClimateControls::opensTheSettings_data()
{
    QTest::addColumn<QByteArray>("id");
    QTest::addColumn<QByteArray>("frame");
    QTest::newRow("an ordinary id") << bytes("21") << bytes("9f 02 21 92 00 00 b3 9f 03");
    QTest::newRow("the id is the escape byte") << bytes("9f") << bytes("9f 02 9f 9f 92 00 00 0d 9f 03");
    QTest::newRow("the check byte is the escape byte")
        << bytes("0d") << bytes("9f 02 0d 92 00 00 9f 9f 9f 03");
    QTest::newRow("id 0") << bytes("00") << bytes("9f 02 00 92 00 00 92 9f 03");
}

void TestClimateControls::opensTheSettings()
{
    QFETCH(QByteArray, id);
    QFETCH(QByteArray, frame);
    receiveFrameWithId(id);
    SentFrames sent;
    QVERIFY(QMetaObject::invokeMethod(group(), "settings"));
    QCOMPARE(sent.take(), QList<QByteArray> {frame});
}

void TestClimateControls::sendsAnyButton_data()
{
    QTest::addColumn<QByteArray>("id");
    QTest::addColumn<int>("code");
    QTest::addColumn<bool>("isPress");
    QTest::addColumn<int>("value");
    QTest::addColumn<QByteArray>("frame");
    QTest::newRow("a release with a value")
        << bytes("21") << 2 << false << 5 << bytes("9f 02 21 93 00 02 00 05 b5 9f 03");
    QTest::newRow("the id is the escape byte")
        << bytes("9f") << 18 << true << 0 << bytes("9f 02 9f 9f 93 00 12 01 00 1f 9f 03");
    QTest::newRow("id and value are the escape byte")
        << bytes("9f") << 27 << true << 0x9f << bytes("9f 02 9f 9f 93 00 1b 01 9f 9f 89 9f 03");
    QTest::newRow("the check byte is the escape byte")
        << bytes("1f") << 18 << true << 0 << bytes("9f 02 1f 93 00 12 01 00 9f 9f 9f 03");
    QTest::newRow("the greatest id and value")
        << bytes("ff") << 28 << true << 0xff << bytes("9f 02 ff 93 00 1c 01 ff 8e 9f 03");
}

void TestClimateControls::sendsAnyButton()
{
    QFETCH(QByteArray, id);
    QFETCH(int, code);
    QFETCH(bool, isPress);
    QFETCH(int, value);
    QFETCH(QByteArray, frame);
    receiveFrameWithId(id);
    SentFrames sent;
    group()->onSendDataSort(char(code), isPress, char(value));
    QVERIFY(QMetaObject::invokeMethod(group(), "onSendDataSort", Q_ARG(char, char(code)),
                                      Q_ARG(bool, isPress), Q_ARG(char, char(value))));
    QCOMPARE(sent.take(), (QList<QByteArray> {frame, frame}));
}

void TestClimateControls::fillsInTheArgumentsThatAreLeftOut()
{
    SentFrames sent;
    QVERIFY(QMetaObject::invokeMethod(group(), "onSendDataSort", Q_ARG(char, char(18))));
    QVERIFY(QMetaObject::invokeMethod(group(), "onSendDataSort", Q_ARG(char, char(2)), Q_ARG(bool, false)));
    group()->onSendDataSort(char(18));
    group()->onSendDataSort(char(2), false);
    const QByteArray pressed = bytes("9f 02 21 93 00 12 01 00 a1 9f 03");
    const QByteArray released = bytes("9f 02 21 93 00 02 00 00 b0 9f 03");
    QCOMPARE(sent.take(), (QList<QByteArray> {pressed, released, pressed, released}));
}

void TestClimateControls::takesTheFirstByteOfTheId()
{
    receiveFrameWithId(bytes("21 44"));
    SentFrames sent;
    group()->acBtn();
    QCOMPARE(sent.take(), QList<QByteArray> {bytes("9f 02 21 93 00 12 01 00 a1 9f 03")});
}

void TestClimateControls::takesTheIdOfTheLastFrame()
{
    // The other categories' ids do not count.
    CanBusDataMap::instance()->setData(2, {bytes("44"), bytes("00")});
    CanBusDataMap::instance()->setData(4, {bytes("55"), bytes("00"), bytes("00")});
    SentFrames sent;
    group()->acBtn();
    receiveFrameWithId(bytes("22"));
    group()->acBtn();
    QCOMPARE(sent.take(),
             (QList<QByteArray> {bytes("9f 02 21 93 00 12 01 00 a1 9f 03"),
                                 bytes("9f 02 22 93 00 12 01 00 a2 9f 03")}));
}

void TestClimateControls::isOneObject()
{
    QVERIFY(VelClimateGroupCmd::instance());
    QCOMPARE(VelClimateGroupCmd::instance(), VelClimateGroupCmd::instance());
    QCOMPARE(VelClimateGroupCmd::instance()->parent(), nullptr);
}

void TestClimateControls::logsBeforeItSends_data()
{
    QTest::addColumn<QByteArray>("control");
    QTest::addColumn<QStringList>("expected");
    QTest::newRow("a button") << QByteArray("acBtn") << QStringList {"21", "a1", "9f02219300120100a19f03"};
    QTest::newRow("the request") << QByteArray("requestClimateInfo")
                                 << QStringList {"21", "b7", "9f0221970001b79f03"};
    QTest::newRow("the settings") << QByteArray("settings")
                                  << QStringList {"\"!\"", "b3", "9f0221920000b39f03"};
}

void TestClimateControls::logsBeforeItSends()
{
    QFETCH(QByteArray, control);
    LogRecorder log;
    QStringList before;
    const auto connection = connect(CanBusPlayer::instance(), &CanBusPlayer::sendCmdData,
                                    [&] { before = log.messages("[DBG]"); });
    QVERIFY(QMetaObject::invokeMethod(group(), control.constData()));
    disconnect(connection);
    QTEST(before, "expected");
    QTEST(log.messages("[DBG]"), "expected");
}

void TestClimateControls::logsAButton()
{
    LogRecorder log;
    group()->acBtn();
    QCOMPARE(log.messages("[DBG]"), (QStringList {"21", "a1", "9f02219300120100a19f03"}));
    QCOMPARE(operationsIn(log),
             (QStringList {"onSendDataSort(char, bool, char) 21", "onSendDataSort(char, bool, char) a1",
                           "onSendDataSort(char, bool, char) 9f02219300120100a19f03"}));
    QCOMPARE(log.messages("[ERR]"), QStringList());
}

void TestClimateControls::logsTheIdOfAButtonAsHexadecimalText()
{
    receiveFrameWithId(bytes("93"));
    LogRecorder log;
    group()->onSendDataSort(char(8), false, char(0x00));
    // A check byte below 10 has one digit.
    QCOMPARE(log.messages("[DBG]"), (QStringList {"93", "8", "9f02939300080000089f03"}));
}

void TestClimateControls::logsARequestWithTheIdAsHexadecimalText()
{
    LogRecorder log;
    group()->requestClimateInfo();
    QCOMPARE(operationsIn(log),
             (QStringList {"requestClimateInfo() 21", "requestClimateInfo() b7",
                           "requestClimateInfo() 9f0221970001b79f03"}));
    QCOMPARE(log.messages("[ERR]"), QStringList());
}

void TestClimateControls::logsTheSettingsWithTheIdAsItIs()
{
    LogRecorder log;
    group()->settings();
    receiveFrameWithId(bytes("9f"));
    group()->settings();
    QCOMPARE(operationsIn(log),
             (QStringList {"settings() \"!\"", "settings() b3", "settings() 9f0221920000b39f03",
                           "settings() \"\\x9F\"", "settings() d", "settings() 9f029f9f9200000d9f03"}));
    QCOMPARE(log.messages("[ERR]"), QStringList());
}

QTEST_GUILESS_MAIN(TestClimateControls)
#include "tst_velclimategroupcmd_controls.moc"
