#include "hexbytes.h"
#include "logrecorder.h"
#include "player/canbusdatamap.h"
#include "player/canbusplayer.h"
#include "showndisplay.h"

#include <srcdsplctrl.h>

#include <QtTest/QSignalSpy>
#include <QtTest/QTest>

#include <memory>

using namespace canbus;

namespace {

QString inDebugForm(int display)
{
    QString text;
    QDebug(&text).nospace() << C::DSPLState(display);
    return text;
}

} // namespace

/// What the player asks the box for when the display changes, and how it writes displays to the log.
class TestHostEventsDisplay : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void requestsTheDataOfTheDisplay_data();
    void requestsTheDataOfTheDisplay();
    void requestsNothingWithoutTheLink_data();
    void requestsNothingWithoutTheLink();
    void logsTheDisplayByName_data();
    void logsTheDisplayByName();
    void requestsNormalWithAFixedId();
    void logsTheNormalRequest();

    void writesADisplayByName_data();
    void writesADisplayByName();
    void writesADisplayAmongOtherValues();

private:
    std::unique_ptr<LogRecorder> m_log;
};

void TestHostEventsDisplay::init()
{
    m_log = std::make_unique<LogRecorder>();
    show(0);
}

void TestHostEventsDisplay::cleanup()
{
    CanBusPlayer::instance()->setCanbusConnectStatus(false);
    m_log.reset();
}

void TestHostEventsDisplay::requestsTheDataOfTheDisplay_data()
{
    QTest::addColumn<int>("display");
    QTest::addColumn<QByteArray>("frame");
    const QByteArray normal = bytes("9f02 22 97 00 00 b5 9f03");
    const QByteArray parking = bytes("9f02 61 97 00 04 f2 9f03");
    QTest::newRow("an ordinary screen") << 0 << normal;
    QTest::newRow("the view without the camera") << 25 << normal;
    QTest::newRow("the one before the gauges") << 72 << normal;
    QTest::newRow("gauges") << 73 << bytes("9f02 41 97 00 02 d4 9f03");
    QTest::newRow("vehicle") << 74 << bytes("9f02 51 97 00 03 c5 9f03");
    QTest::newRow("climate") << 75 << bytes("9f02 31 97 00 01 a7 9f03");
    QTest::newRow("parking") << 76 << parking;
    QTest::newRow("the text screen") << 77 << normal;
    QTest::newRow("the camera view") << 78 << parking;
    QTest::newRow("the one behind the camera view") << 79 << normal;
}

void TestHostEventsDisplay::requestsTheDataOfTheDisplay()
{
    QFETCH(const int, display);
    CanBusDataMap::instance()->setData(0x03, {bytes("31")});
    CanBusDataMap::instance()->setData(0x04, {bytes("41")});
    CanBusDataMap::instance()->setData(0x05, {bytes("51")});
    CanBusDataMap::instance()->setData(0x06, {bytes("61")});
    CanBusPlayer *const player = CanBusPlayer::instance();
    player->setCanbusConnectStatus(true);
    show(display);
    QSignalSpy sent(player, &CanBusPlayer::sendCmdData);

    player->onCanbusSourceDsplChange();

    QCOMPARE(sent.count(), 1);
    QTEST(sent.at(0).at(0).toByteArray(), "frame");
}

void TestHostEventsDisplay::requestsNothingWithoutTheLink_data()
{
    QTest::addColumn<int>("display");
    QTest::newRow("an ordinary screen") << 0;
    QTest::newRow("the view without the camera") << 25;
    QTest::newRow("the one before the gauges") << 72;
    QTest::newRow("gauges") << 73;
    QTest::newRow("vehicle") << 74;
    QTest::newRow("climate") << 75;
    QTest::newRow("parking") << 76;
    QTest::newRow("the text screen") << 77;
    QTest::newRow("the camera view") << 78;
    QTest::newRow("the one behind the camera view") << 79;
}

void TestHostEventsDisplay::requestsNothingWithoutTheLink()
{
    QFETCH(const int, display);
    CanBusPlayer *const player = CanBusPlayer::instance();
    show(display);
    QSignalSpy sent(player, &CanBusPlayer::sendCmdData);
    player->onCanbusSourceDsplChange();
    QCOMPARE(sent.count(), 0);
}

void TestHostEventsDisplay::logsTheDisplayByName_data()
{
    QTest::addColumn<int>("display");
    QTest::addColumn<bool>("connected");
    QTest::addColumn<QString>("message");
    QTest::newRow("a named one, without the link") << 73 << false << "DSPL_Gauges false";
    QTest::newRow("a named one") << 77 << true << "DSPL_TextScreen true";
    QTest::newRow("one without a name") << 72 << true << "72 true";
}

void TestHostEventsDisplay::logsTheDisplayByName()
{
    QFETCH(const int, display);
    QFETCH(const bool, connected);
    CanBusPlayer player;
    player.setCanbusConnectStatus(connected);
    show(display);
    m_log->clear();
    player.onCanbusSourceDsplChange();
    QTEST(m_log->messages("[DBG]").value(0), "message");
}

void TestHostEventsDisplay::requestsNormalWithAFixedId()
{
    CanBusDataMap::instance()->setData(0x17, {bytes("77")});
    CanBusDataMap::instance()->setData(0x97, {bytes("78")});
    CanBusPlayer player;
    QSignalSpy sent(&player, &CanBusPlayer::sendCmdData);
    // Also without the link.
    player.requestNormal();
    player.requestNormal();
    QCOMPARE(sent.count(), 2);
    QCOMPARE(sent.at(0).at(0).toByteArray(), bytes("9f 02 22 97 00 00 b5 9f 03"));
    QCOMPARE(sent.at(1).at(0).toByteArray(), bytes("9f 02 22 97 00 00 b5 9f 03"));
}

void TestHostEventsDisplay::logsTheNormalRequest()
{
    CanBusPlayer player;
    player.requestNormal();
    QCOMPARE(m_log->messages("[DBG]"), (QStringList {"b5", "9f0222970000b59f03"}));
}

void TestHostEventsDisplay::writesADisplayByName_data()
{
    QTest::addColumn<int>("display");
    QTest::addColumn<QString>("text");
    QTest::newRow("an ordinary screen") << 0 << "DSPL_Home";
    QTest::newRow("the view without the camera") << 25 << "DSPL_NoCamera";
    QTest::newRow("gauges") << 73 << "DSPL_Gauges";
    QTest::newRow("vehicle") << 74 << "DSPL_Vehicle";
    QTest::newRow("climate") << 75 << "DSPL_Climate";
    QTest::newRow("parking") << 76 << "DSPL_Parking";
    QTest::newRow("the text screen") << 77 << "DSPL_TextScreen";
    QTest::newRow("the camera view") << 78 << "DSPL_BoxCamera";
    QTest::newRow("one without a name") << 72 << "72";
    QTest::newRow("another without a name") << 4711 << "4711";
    QTest::newRow("a negative one") << -1 << "-1";
}

void TestHostEventsDisplay::writesADisplayByName()
{
    QFETCH(const int, display);
    QTEST(inDebugForm(display), "text");
}

void TestHostEventsDisplay::writesADisplayAmongOtherValues()
{
    QString text;
    QDebug(&text) << 1 << C::DSPL_Gauges << C::DSPLState(72) << "end";
    QCOMPARE(text.trimmed(), QStringLiteral("1 DSPL_Gauges 72 end"));

    QString dense;
    QDebug(&dense).nospace() << 1 << C::DSPL_Gauges << 2;
    QCOMPARE(dense, QStringLiteral("1DSPL_Gauges2"));
}

QTEST_GUILESS_MAIN(TestHostEventsDisplay)
#include "tst_hostevents_display.moc"
