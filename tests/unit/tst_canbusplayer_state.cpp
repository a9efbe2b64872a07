#include "hexbytes.h"
#include "playerrig.h"

#include <QtTest/QTest>

#include <memory>

using namespace canbus;

/// What the player tells of itself when it is asked: for a UI that comes late.
class TestCanBusPlayerState : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void hasNoTextScreenAtFirst();
    void tellsTheTextScreenAsItIs();
    void tellsATextScreenWithOneText();
    void hasNoProtocolAtFirst();
    void tellsTheProtocolThatIsJoined();
    void hasNoProtocolWhenThePortHasFailed();
    void forgetsAProtocolThatIsGone();
};

void TestCanBusPlayerState::hasNoTextScreenAtFirst()
{
    const CanBusPlayer player;
    const CanBusPlayer::TextScreen screen = player.textScreen();
    QCOMPARE(screen.menu, QList<int>());
    QVERIFY(!screen.minus);
    QVERIFY(!screen.plus);
    QCOMPARE(screen.texts, QStringList());
}

void TestCanBusPlayerState::tellsTheTextScreenAsItIs()
{
    CanBusPlayer player;
    player.onTextScreen(bytes("09 09 09 09 01 58 00 59 00"));
    player.onTextScreen(bytes("01 02 03 ff 02 41 00 42 00"));
    const CanBusPlayer::TextScreen screen = player.textScreen();
    QCOMPARE(screen.menu, (QList<int> {1, 2, 3, 255}));
    QVERIFY(!screen.minus);
    QVERIFY(screen.plus);
    QCOMPARE(screen.texts, (QStringList {"A", "B"}));
}

void TestCanBusPlayerState::tellsATextScreenWithOneText()
{
    CanBusPlayer player;
    player.onTextScreen(bytes("01 02 03 04 01 41 00"));
    QVERIFY(player.textScreen().minus);
    QCOMPARE(player.textScreen().texts, QStringList {"A"});
}

void TestCanBusPlayerState::hasNoProtocolAtFirst()
{
    const CanBusPlayer player;
    QCOMPARE(player.protocol(), nullptr);
}

void TestCanBusPlayerState::tellsTheProtocolThatIsJoined()
{
    PlayerRig rig;
    rig.start();
    QCOMPARE(rig.player.protocol(), &rig.protocol);
    PlayedProtocol second;
    rig.player.init(&second);
    QCOMPARE(rig.player.protocol(), &second);
}

void TestCanBusPlayerState::hasNoProtocolWhenThePortHasFailed()
{
    PlayerRig rig;
    rig.startWithoutDevice();
    QCOMPARE(rig.player.protocol(), nullptr);
}

void TestCanBusPlayerState::forgetsAProtocolThatIsGone()
{
    PlayerRig rig;
    rig.player.setUartPort(rig.line.name(), 57600);
    auto protocol = std::make_unique<PlayedProtocol>();
    rig.player.init(protocol.get());
    QCOMPARE(rig.player.protocol(), protocol.get());
    protocol.reset();
    QCOMPARE(rig.player.protocol(), nullptr);
}

QTEST_GUILESS_MAIN(TestCanBusPlayerState)
#include "tst_canbusplayer_state.moc"
