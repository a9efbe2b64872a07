#include <displaystate.h>
#include <eventhandler.h>
#include <srcdsplctrl.h>

#include <longestwait.h>

#include <QtCore/QMetaEnum>
#include <QtTest/QSignalSpy>
#include <QtTest/QTest>

namespace {

EventHandler *handler()
{
    return EventHandler::instance();
}

SrcDsplCtrl *displays()
{
    return EventHandler::instance()->srcDsplCtrl();
}

C::DSPLState shown()
{
    return displays()->currentDspl();
}

} // namespace

/// Records the signal as a host does: by the slot's signature.
class DisplayRecorder : public QObject {
    Q_OBJECT

public:
    QList<C::DSPLState> displays;

public Q_SLOTS:
    void take(C::DSPLState display, C::SourceState, const QByteArray &) { displays.append(display); }
};

/// The host's display states, its controller of source and display, and its event handler.
class TestHostSdkDisplay : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init();

    void namesTheDisplaysOfTheBox_data();
    void namesTheDisplaysOfTheBox();
    void leavesOtherDisplaysWithoutAName();
    void knowsTheSourceStatesByName();

    void showsTheHomeScreenAtStart();
    void storesADisplayAndTellsIt();
    void tellsADisplayAgainThatStaysTheSame();
    void storesADisplayThatHasNoName();
    void knowsTheNewDisplayWhileItTellsIt();
    void deliversADisplayQueuedBySignature();

    void handlerIsOneObjectWithOneController();
    void tellsEveryEvent_data();
    void tellsEveryEvent();
    void tellsAnEventBeforeItActsOnIt();
    void changesNoDisplayOnOtherEvents();
    void showsTheBoxCameraOnEvent35();
    void returnsOnEvent36ToTheDisplayBefore_data();
    void returnsOnEvent36ToTheDisplayBefore();
    void remembersTheDisplayBeforeTheFirstOfTwoEvents35();
    void staysOnEvent36WhereTheCameraIsNotShown();
    void returnsHomeFromACameraThatNoEventHasShown();
    void forgetsTheDisplayBeforeOnceTheCameraWasLeft();
};

void TestHostSdkDisplay::showsTheHomeScreenAtStart()
{
    const SrcDsplCtrl fresh;
    QCOMPARE(fresh.currentDspl(), C::DSPL_Home);
}

void TestHostSdkDisplay::init()
{
    handler()->onEvent(36);
    displays()->setCurrentDspl(C::DSPL_Home);
}

void TestHostSdkDisplay::namesTheDisplaysOfTheBox_data()
{
    QTest::addColumn<int>("value");
    QTest::addColumn<QByteArray>("name");
    QTest::newRow("an ordinary screen") << 0 << QByteArray("DSPL_Home");
    QTest::newRow("the view without the camera") << 25 << QByteArray("DSPL_NoCamera");
    QTest::newRow("gauges") << 73 << QByteArray("DSPL_Gauges");
    QTest::newRow("vehicle") << 74 << QByteArray("DSPL_Vehicle");
    QTest::newRow("climate") << 75 << QByteArray("DSPL_Climate");
    QTest::newRow("parking") << 76 << QByteArray("DSPL_Parking");
    QTest::newRow("text screen") << 77 << QByteArray("DSPL_TextScreen");
    QTest::newRow("the box's camera") << 78 << QByteArray("DSPL_BoxCamera");
}

void TestHostSdkDisplay::namesTheDisplaysOfTheBox()
{
    QFETCH(const int, value);
    const int index = C::staticMetaObject.indexOfEnumerator("DSPLState");
    QVERIFY(index >= 0);
    QTEST(QByteArray(C::staticMetaObject.enumerator(index).valueToKey(value)), "name");
}

void TestHostSdkDisplay::leavesOtherDisplaysWithoutAName()
{
    const QMetaEnum names = QMetaEnum::fromType<C::DSPLState>();
    QCOMPARE(names.keyCount(), 8);
    QVERIFY(!names.valueToKey(79));
}

void TestHostSdkDisplay::knowsTheSourceStatesByName()
{
    QCOMPARE(QMetaEnum::fromType<C::SourceState>().valueToKey(0), "SRC_None");
}

void TestHostSdkDisplay::storesADisplayAndTellsIt()
{
    QSignalSpy changes(displays(), SIGNAL(dsplAndSrcChanged(C::DSPLState, C::SourceState, QByteArray)));
    QVERIFY(changes.isValid());

    displays()->setCurrentDspl(C::DSPL_Climate);

    QCOMPARE(shown(), C::DSPL_Climate);
    QCOMPARE(changes.count(), 1);
    QCOMPARE(changes.at(0).at(0).value<C::DSPLState>(), C::DSPL_Climate);
    QCOMPARE(changes.at(0).at(1).value<C::SourceState>(), C::SRC_None);
    QCOMPARE(changes.at(0).at(2).toByteArray(), QByteArray());
}

void TestHostSdkDisplay::tellsADisplayAgainThatStaysTheSame()
{
    QSignalSpy changes(displays(), &SrcDsplCtrl::dsplAndSrcChanged);
    displays()->setCurrentDspl(C::DSPL_Gauges);
    displays()->setCurrentDspl(C::DSPL_Gauges);
    QCOMPARE(changes.count(), 2);
}

void TestHostSdkDisplay::storesADisplayThatHasNoName()
{
    displays()->setCurrentDspl(static_cast<C::DSPLState>(4711));
    QCOMPARE(static_cast<int>(shown()), 4711);
}

void TestHostSdkDisplay::knowsTheNewDisplayWhileItTellsIt()
{
    QObject context;
    C::DSPLState atSignal = C::DSPL_Home;
    connect(displays(), &SrcDsplCtrl::dsplAndSrcChanged, &context, [&atSignal] { atSignal = shown(); });
    displays()->setCurrentDspl(C::DSPL_Parking);
    QCOMPARE(atSignal, C::DSPL_Parking);
}

void TestHostSdkDisplay::deliversADisplayQueuedBySignature()
{
    DisplayRecorder recorder;
    QVERIFY(connect(displays(), SIGNAL(dsplAndSrcChanged(C::DSPLState, C::SourceState, QByteArray)),
                    &recorder, SLOT(take(C::DSPLState, C::SourceState, QByteArray)), Qt::QueuedConnection));
    displays()->setCurrentDspl(C::DSPL_Vehicle);
    QVERIFY(recorder.displays.isEmpty());
    QTRY_COMPARE_WITH_TIMEOUT(recorder.displays, QList<C::DSPLState> {C::DSPL_Vehicle}, kLongestWaitMs);
}

void TestHostSdkDisplay::handlerIsOneObjectWithOneController()
{
    QVERIFY(handler());
    QCOMPARE(EventHandler::instance(), EventHandler::instance());
    QVERIFY(handler()->srcDsplCtrl());
    QCOMPARE(handler()->srcDsplCtrl(), handler()->srcDsplCtrl());
}

void TestHostSdkDisplay::tellsEveryEvent_data()
{
    QTest::addColumn<int>("event");
    QTest::newRow("leave the box's screen") << 4;
    QTest::newRow("enter the camera") << 35;
    QTest::newRow("leave the camera") << 36;
    QTest::newRow("an unknown event") << 4711;
    QTest::newRow("a negative event") << -1;
}

void TestHostSdkDisplay::tellsEveryEvent()
{
    QFETCH(const int, event);
    QSignalSpy events(handler(), &EventHandler::eventReceived);
    handler()->onEvent(event);
    handler()->onEvent(event);
    QCOMPARE(events.count(), 2);
    QCOMPARE(events.at(0).at(0).toInt(), event);
    QCOMPARE(events.at(1).at(0).toInt(), event);
}

void TestHostSdkDisplay::tellsAnEventBeforeItActsOnIt()
{
    QObject context;
    QStringList order;
    connect(handler(), &EventHandler::eventReceived, &context, [&order] { order << "event"; });
    connect(displays(), &SrcDsplCtrl::dsplAndSrcChanged, &context, [&order] { order << "display"; });
    handler()->onEvent(35);
    QCOMPARE(order, (QStringList {"event", "display"}));
}

void TestHostSdkDisplay::changesNoDisplayOnOtherEvents()
{
    displays()->setCurrentDspl(C::DSPL_Climate);
    QSignalSpy changes(displays(), &SrcDsplCtrl::dsplAndSrcChanged);
    handler()->onEvent(4);
    handler()->onEvent(34);
    handler()->onEvent(37);
    QCOMPARE(changes.count(), 0);
    QCOMPARE(shown(), C::DSPL_Climate);
}

void TestHostSdkDisplay::showsTheBoxCameraOnEvent35()
{
    QSignalSpy changes(displays(), &SrcDsplCtrl::dsplAndSrcChanged);
    handler()->onEvent(35);
    QCOMPARE(static_cast<int>(shown()), 78);
    QCOMPARE(changes.count(), 1);
    QCOMPARE(changes.at(0).at(0).value<C::DSPLState>(), C::DSPL_BoxCamera);
}

void TestHostSdkDisplay::returnsOnEvent36ToTheDisplayBefore_data()
{
    QTest::addColumn<int>("display");
    QTest::newRow("home") << 0;
    QTest::newRow("climate") << 75;
    QTest::newRow("a display without a name") << 4711;
}

void TestHostSdkDisplay::returnsOnEvent36ToTheDisplayBefore()
{
    QFETCH(const int, display);
    displays()->setCurrentDspl(static_cast<C::DSPLState>(display));
    handler()->onEvent(35);
    QSignalSpy changes(displays(), &SrcDsplCtrl::dsplAndSrcChanged);

    handler()->onEvent(36);

    QCOMPARE(static_cast<int>(shown()), display);
    QCOMPARE(changes.count(), 1);
    QCOMPARE(static_cast<int>(changes.at(0).at(0).value<C::DSPLState>()), display);
}

void TestHostSdkDisplay::remembersTheDisplayBeforeTheFirstOfTwoEvents35()
{
    displays()->setCurrentDspl(C::DSPL_Gauges);
    handler()->onEvent(35);
    QSignalSpy changes(displays(), &SrcDsplCtrl::dsplAndSrcChanged);
    handler()->onEvent(35);
    QCOMPARE(changes.count(), 0);
    QCOMPARE(shown(), C::DSPL_BoxCamera);

    handler()->onEvent(36);
    QCOMPARE(shown(), C::DSPL_Gauges);
}

void TestHostSdkDisplay::staysOnEvent36WhereTheCameraIsNotShown()
{
    displays()->setCurrentDspl(C::DSPL_Climate);
    QSignalSpy changes(displays(), &SrcDsplCtrl::dsplAndSrcChanged);
    handler()->onEvent(36);
    QCOMPARE(changes.count(), 0);
    QCOMPARE(shown(), C::DSPL_Climate);
}

void TestHostSdkDisplay::returnsHomeFromACameraThatNoEventHasShown()
{
    displays()->setCurrentDspl(C::DSPL_Climate);
    displays()->setCurrentDspl(C::DSPL_BoxCamera);
    handler()->onEvent(36);
    QCOMPARE(shown(), C::DSPL_Home);
}

void TestHostSdkDisplay::forgetsTheDisplayBeforeOnceTheCameraWasLeft()
{
    displays()->setCurrentDspl(C::DSPL_Gauges);
    handler()->onEvent(35);
    displays()->setCurrentDspl(C::DSPL_Vehicle);
    handler()->onEvent(36);
    QCOMPARE(shown(), C::DSPL_Vehicle);

    displays()->setCurrentDspl(C::DSPL_BoxCamera);
    handler()->onEvent(36);
    QCOMPARE(shown(), C::DSPL_Home);
}

QTEST_GUILESS_MAIN(TestHostSdkDisplay)
#include "tst_hostsdkdisplay.moc"
