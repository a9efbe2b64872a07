#include "hexbytes.h"
#include "hostroot.h"
#include "logrecorder.h"
#include "player/canbusplayer.h"
#include "showndisplay.h"

#include <eventhandler.h>
#include <mcuvechiclebridge.h>

#include <QtTest/QTest>

#include <memory>

using namespace canbus;

namespace {

/// The box's screens: number 1, which brings the camera, alone, and all others.
const QByteArray kCameraScreen = bytes("02");
const QByteArray kOtherScreens = bytes("fd");

/// The numbers of the events that the host gets.
class EventRecorder : public QObject {
public:
    EventRecorder()
    {
        connect(EventHandler::instance(), &EventHandler::eventReceived, this,
                [this](int event) { events += event; });
    }

    QList<int> events;
};

} // namespace

/// What the player does when the reverse gear changes, and what it tells about the camera.
class TestHostEvents : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void followsTheReverseGear_data();
    void followsTheReverseGear();
    void leavesOnlyTheCameraView_data();
    void leavesOnlyTheCameraView();
    void ignoresTheDetailOfTheReverseGear();
    void entersNoCameraBeforeTheScreensAreKnown();
    void entersNoCameraWithoutTheSetting();
    void readsTheCameraSettingAtEachChange();
    void logsWhatTheCameraDependsOn();

    void tellsWhetherTheCameraIsEnabled_data();
    void tellsWhetherTheCameraIsEnabled();
    void logsWhatTheAnswerDependsOn();

private:
    std::unique_ptr<HostRoot> m_root;
    std::unique_ptr<LogRecorder> m_log;
};

void TestHostEvents::init()
{
    m_log = std::make_unique<LogRecorder>();
    m_root = std::make_unique<HostRoot>();
    show(0);
}

void TestHostEvents::cleanup()
{
    m_root.reset();
    m_log.reset();
}

void TestHostEvents::followsTheReverseGear_data()
{
    QTest::addColumn<bool>("connected");
    QTest::addColumn<bool>("supported");
    QTest::addColumn<bool>("wanted");
    QTest::addColumn<int>("display");
    QTest::addColumn<bool>("reverse");
    QTest::addColumn<QList<int>>("events");
    const QList<int> none;
    const QList<int> enter {35};
    const QList<int> leave {36};
    // The camera view, reverse released: left whatever the rest.
    QTest::newRow("- - -, view, released") << false << false << false << 78 << false << leave;
    QTest::newRow("- - setting, view, released") << false << false << true << 78 << false << leave;
    QTest::newRow("- screen -, view, released") << false << true << false << 78 << false << leave;
    QTest::newRow("- screen setting, view, released") << false << true << true << 78 << false << leave;
    QTest::newRow("link - -, view, released") << true << false << false << 78 << false << leave;
    QTest::newRow("link - setting, view, released") << true << false << true << 78 << false << leave;
    QTest::newRow("link screen -, view, released") << true << true << false << 78 << false << leave;
    QTest::newRow("link screen setting, view, released") << true << true << true << 78 << false << leave;
    // The camera view, reverse engaged: entered again by all three alone.
    QTest::newRow("- - -, view, engaged") << false << false << false << 78 << true << none;
    QTest::newRow("- - setting, view, engaged") << false << false << true << 78 << true << none;
    QTest::newRow("- screen -, view, engaged") << false << true << false << 78 << true << none;
    QTest::newRow("- screen setting, view, engaged") << false << true << true << 78 << true << none;
    QTest::newRow("link - -, view, engaged") << true << false << false << 78 << true << none;
    QTest::newRow("link - setting, view, engaged") << true << false << true << 78 << true << none;
    QTest::newRow("link screen -, view, engaged") << true << true << false << 78 << true << none;
    QTest::newRow("link screen setting, view, engaged") << true << true << true << 78 << true << enter;
    // Another display, reverse released: nothing to leave.
    QTest::newRow("- - -, other, released") << false << false << false << 75 << false << none;
    QTest::newRow("- - setting, other, released") << false << false << true << 75 << false << none;
    QTest::newRow("- screen -, other, released") << false << true << false << 75 << false << none;
    QTest::newRow("- screen setting, other, released") << false << true << true << 75 << false << none;
    QTest::newRow("link - -, other, released") << true << false << false << 75 << false << none;
    QTest::newRow("link - setting, other, released") << true << false << true << 75 << false << none;
    QTest::newRow("link screen -, other, released") << true << true << false << 75 << false << none;
    QTest::newRow("link screen setting, other, released") << true << true << true << 75 << false << none;
    // Another display, reverse engaged.
    QTest::newRow("- - -, other, engaged") << false << false << false << 75 << true << none;
    QTest::newRow("- - setting, other, engaged") << false << false << true << 75 << true << none;
    QTest::newRow("- screen -, other, engaged") << false << true << false << 75 << true << none;
    QTest::newRow("- screen setting, other, engaged") << false << true << true << 75 << true << none;
    QTest::newRow("link - -, other, engaged") << true << false << false << 75 << true << none;
    QTest::newRow("link - setting, other, engaged") << true << false << true << 75 << true << none;
    QTest::newRow("link screen -, other, engaged") << true << true << false << 75 << true << none;
    QTest::newRow("link screen setting, other, engaged") << true << true << true << 75 << true << enter;
}

void TestHostEvents::followsTheReverseGear()
{
    QFETCH(const bool, connected);
    QFETCH(const bool, supported);
    QFETCH(const bool, wanted);
    QFETCH(const int, display);
    QFETCH(const bool, reverse);
    CanBusPlayer player;
    player.setCanbusConnectStatus(connected);
    player.suppScreen(supported ? kCameraScreen : kOtherScreens);
    m_root->writeCameraFile(wanted ? "CameraComposite=true\n" : "CameraComposite=false\n");
    show(display);
    EventRecorder host;

    player.onReverseChanged(reverse, 0);

    QTEST(host.events, "events");
}

void TestHostEvents::leavesOnlyTheCameraView_data()
{
    QTest::addColumn<int>("display");
    QTest::addColumn<QList<int>>("events");
    QTest::newRow("an ordinary screen") << 0 << QList<int>();
    QTest::newRow("the view without the camera") << 25 << QList<int>();
    QTest::newRow("parking") << 76 << QList<int>();
    QTest::newRow("the one before the camera view") << 77 << QList<int>();
    QTest::newRow("the camera view") << 78 << QList<int> {36};
    QTest::newRow("the one behind the camera view") << 79 << QList<int>();
}

void TestHostEvents::leavesOnlyTheCameraView()
{
    QFETCH(const int, display);
    CanBusPlayer player;
    show(display);
    EventRecorder host;
    player.onReverseChanged(false, 0);
    QTEST(host.events, "events");
}

void TestHostEvents::ignoresTheDetailOfTheReverseGear()
{
    CanBusPlayer player;
    player.setCanbusConnectStatus(true);
    player.suppScreen(kCameraScreen);
    m_root->writeCameraFile("CameraComposite=true\n");
    EventRecorder host;
    player.onReverseChanged(true, 1);
    player.onReverseChanged(false, 1);
    player.onReverseChanged(true, -1);
    QCOMPARE(host.events, (QList<int> {35, 36, 35}));
}

void TestHostEvents::entersNoCameraBeforeTheScreensAreKnown()
{
    CanBusPlayer player;
    player.setCanbusConnectStatus(true);
    m_root->writeCameraFile("CameraComposite=true\n");
    EventRecorder host;
    player.onReverseChanged(true, 0);
    QCOMPARE(host.events, QList<int>());
    // Asking does not make the screen known.
    QCOMPARE(player.getSuppScrennInfo(), (QMap<int, bool>()));
}

void TestHostEvents::entersNoCameraWithoutTheSetting()
{
    CanBusPlayer player;
    player.setCanbusConnectStatus(true);
    player.suppScreen(kCameraScreen);
    m_root->writeCameraFile("");
    m_root->writeClockFile("CameraComposite=true\n");
    EventRecorder host;
    player.onReverseChanged(true, 0);
    QCOMPARE(host.events, QList<int>());
    QVERIFY(!player.getCanbusCameraEnable());
}

void TestHostEvents::readsTheCameraSettingAtEachChange()
{
    CanBusPlayer player;
    player.setCanbusConnectStatus(true);
    player.suppScreen(kCameraScreen);
    EventRecorder host;
    m_root->writeCameraFile("CameraComposite=false\n");
    player.onReverseChanged(true, 0);
    QCOMPARE(host.events, QList<int>());
    m_root->writeCameraFile("CameraComposite=true\n");
    player.onReverseChanged(true, 0);
    QCOMPARE(host.events, QList<int> {35});
}

void TestHostEvents::logsWhatTheCameraDependsOn()
{
    CanBusPlayer player;
    player.suppScreen(kCameraScreen);
    m_log->clear();
    player.onReverseChanged(true, 0);
    player.setCanbusConnectStatus(true);
    m_root->writeCameraFile("CameraComposite=true\n");
    player.onReverseChanged(false, 0);
    QCOMPARE(m_log->messages("[DBG]"), (QStringList {"true", "false true false", "false", "true true true"}));
}

void TestHostEvents::tellsWhetherTheCameraIsEnabled_data()
{
    QTest::addColumn<bool>("connected");
    QTest::addColumn<bool>("supported");
    QTest::addColumn<bool>("wanted");
    QTest::addColumn<int>("display");
    QTest::addColumn<bool>("enabled");
    // All three: everywhere but in the one view.
    QTest::newRow("link screen setting, ordinary screen") << true << true << true << 0 << true;
    QTest::newRow("link screen setting, the view without") << true << true << true << 25 << false;
    QTest::newRow("link screen setting, climate") << true << true << true << 75 << true;
    QTest::newRow("link screen setting, camera view") << true << true << true << 78 << true;
    // Otherwise: in the camera view alone.
    QTest::newRow("link screen -, ordinary screen") << true << true << false << 0 << false;
    QTest::newRow("link screen -, the view without") << true << true << false << 25 << false;
    QTest::newRow("link screen -, climate") << true << true << false << 75 << false;
    QTest::newRow("link screen -, camera view") << true << true << false << 78 << true;
    QTest::newRow("link - setting, ordinary screen") << true << false << true << 0 << false;
    QTest::newRow("link - setting, the view without") << true << false << true << 25 << false;
    QTest::newRow("link - setting, climate") << true << false << true << 75 << false;
    QTest::newRow("link - setting, camera view") << true << false << true << 78 << true;
    QTest::newRow("link - -, ordinary screen") << true << false << false << 0 << false;
    QTest::newRow("link - -, the view without") << true << false << false << 25 << false;
    QTest::newRow("link - -, climate") << true << false << false << 75 << false;
    QTest::newRow("link - -, camera view") << true << false << false << 78 << true;
    QTest::newRow("- screen setting, ordinary screen") << false << true << true << 0 << false;
    QTest::newRow("- screen setting, the view without") << false << true << true << 25 << false;
    QTest::newRow("- screen setting, climate") << false << true << true << 75 << false;
    QTest::newRow("- screen setting, camera view") << false << true << true << 78 << true;
    QTest::newRow("- screen -, ordinary screen") << false << true << false << 0 << false;
    QTest::newRow("- screen -, the view without") << false << true << false << 25 << false;
    QTest::newRow("- screen -, climate") << false << true << false << 75 << false;
    QTest::newRow("- screen -, camera view") << false << true << false << 78 << true;
    QTest::newRow("- - setting, ordinary screen") << false << false << true << 0 << false;
    QTest::newRow("- - setting, the view without") << false << false << true << 25 << false;
    QTest::newRow("- - setting, climate") << false << false << true << 75 << false;
    QTest::newRow("- - setting, camera view") << false << false << true << 78 << true;
    QTest::newRow("- - -, ordinary screen") << false << false << false << 0 << false;
    QTest::newRow("- - -, the view without") << false << false << false << 25 << false;
    QTest::newRow("- - -, climate") << false << false << false << 75 << false;
    QTest::newRow("- - -, camera view") << false << false << false << 78 << true;
}

void TestHostEvents::tellsWhetherTheCameraIsEnabled()
{
    QFETCH(const bool, connected);
    QFETCH(const bool, supported);
    QFETCH(const bool, wanted);
    QFETCH(const int, display);
    QFETCH(const bool, enabled);
    CanBusPlayer player;
    player.setCanbusConnectStatus(connected);
    player.suppScreen(supported ? kCameraScreen : kOtherScreens);
    m_root->writeCameraFile(wanted ? "CameraComposite=true\n" : "CameraComposite=false\n");
    show(display);
    EventRecorder host;

    // The gear itself plays no part.
    for (const bool reverse : {true, false}) {
        McuVechicleBridge::instance()->setReverse(reverse);
        QCOMPARE(player.getCanbusCameraEnable(), enabled);
    }
    QCOMPARE(host.events, QList<int>());
}

void TestHostEvents::logsWhatTheAnswerDependsOn()
{
    CanBusPlayer player;
    player.setCanbusConnectStatus(true);
    player.suppScreen(kOtherScreens);
    m_root->writeCameraFile("CameraComposite=true\n");
    m_log->clear();
    player.getCanbusCameraEnable();
    QCOMPARE(m_log->messages("[DBG]"), QStringList {"true false true"});
}

QTEST_GUILESS_MAIN(TestHostEvents)
#include "tst_hostevents.moc"
