#include "hexbytes.h"
#include "logrecorder.h"
#include "longestwait.h"
#include "player/canbusplayer.h"
#include "showndisplay.h"

#include <touchevent.h>

#include <QtCore/QCoreApplication>
#include <QtTest/QSignalSpy>
#include <QtTest/QTest>

#include <memory>
#include <utility>

using namespace canbus;

namespace {

constexpr int kFirstMarker = 3001;
constexpr int kSecondMarker = 3002;
constexpr int kLowMarker = 3003;
constexpr int kHighMarker = 3004;

void postMarker(int type, int priority = Qt::NormalEventPriority)
{
    QCoreApplication::postEvent(QCoreApplication::instance(), new QEvent(QEvent::Type(type)), priority);
}

QMap<int, bool> screens(bool screen0, bool screen1, bool screen2, bool screen3, bool screen4)
{
    return {{0, screen0}, {1, screen1}, {2, screen2}, {3, screen3}, {4, screen4}};
}

/// Sees what is delivered to the application object, and keeps it from going further.
class ApplicationWatch : public QObject {
public:
    ApplicationWatch() { QCoreApplication::instance()->installEventFilter(this); }

    /// The touches since the last call: "TOUCH A B".
    QStringList takeTouches() { return std::exchange(m_touches, QStringList()); }

    QList<QByteArray> serialized; ///< the bytes of each touch
    QList<int> types;             ///< the types of all touches and markers, in order

    bool eventFilter(QObject *receiver, QEvent *event) override
    {
        if (receiver != QCoreApplication::instance() || event->type() < QEvent::User)
            return false;
        types += event->type();
        if (const auto *touch = dynamic_cast<TouchEvent *>(event)) {
            m_touches += QStringLiteral("%1 %2 %3").arg(touch->touch).arg(touch->a).arg(touch->b);
            serialized += touch->serialized;
        }
        return true;
    }

private:
    QStringList m_touches;
};

} // namespace

/// The screens that the box supports, and its requests to leave a screen or to move on it.
class TestScreens : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup() { m_log.reset(); }

    void knowsNoScreensBeforeTheBoxHasSaidSo();
    void readsTheSupportedScreens_data();
    void readsTheSupportedScreens();
    void announcesTheScreensChangedOrNot();
    void forgetsTheFormerScreens();
    void knowsTheScreensWhileItAnnouncesThem();
    void handsOutACopyOfTheScreens();
    void logsTheScreensByteAndEveryScreen();

    void leavesABoxScreenBeforeItReturns_data();
    void leavesABoxScreenBeforeItReturns();
    void leavesNoOtherDisplay_data();
    void leavesNoOtherDisplay();
    void asksForTheDisplayAtEachRequest();
    void movesOnAScreenOnceTheEventLoopRuns_data();
    void movesOnAScreenOnceTheEventLoopRuns();
    void movesOnEveryDisplay_data();
    void movesOnEveryDisplay();
    void keepsTheOrderOfItsMoves();
    void postsMovesWithNormalPriority();
    void serializesATouch_data();
    void serializesATouch();
    void refusesOtherRequests_data();
    void refusesOtherRequests();
    void readsAnEmptyRequestAsLeave();
    void logsTheSizeAndTheRequest();

private:
    std::unique_ptr<LogRecorder> m_log;
};

void TestScreens::init()
{
    m_log = std::make_unique<LogRecorder>();
    show(0);
}

void TestScreens::knowsNoScreensBeforeTheBoxHasSaidSo()
{
    CanBusPlayer player;
    QCOMPARE(player.getSuppScrennInfo(), (QMap<int, bool>()));
}

void TestScreens::readsTheSupportedScreens_data()
{
    QTest::addColumn<QByteArray>("payload");
    QTest::addColumn<QMap<int, bool>>("expected");
    QTest::newRow("none") << bytes("00") << screens(false, false, false, false, false);
    QTest::newRow("bit 0 is screen 0") << bytes("01") << screens(true, false, false, false, false);
    QTest::newRow("bit 1 is screen 1") << bytes("02") << screens(false, true, false, false, false);
    QTest::newRow("bit 2 is screen 2") << bytes("04") << screens(false, false, true, false, false);
    QTest::newRow("bit 3 is screen 3") << bytes("08") << screens(false, false, false, true, false);
    QTest::newRow("bit 4 is screen 4") << bytes("10") << screens(false, false, false, false, true);
    QTest::newRow("all five") << bytes("1f") << screens(true, true, true, true, true);
    QTest::newRow("bits 5 to 7 are ignored") << bytes("e0") << screens(false, false, false, false, false);
    QTest::newRow("all bits") << bytes("ff") << screens(true, true, true, true, true);
    QTest::newRow("only the first byte counts") << bytes("05 1f") << screens(true, false, true, false, false);
    QTest::newRow("an empty payload reads as none")
        << bytes("") << screens(false, false, false, false, false);
}

void TestScreens::readsTheSupportedScreens()
{
    QFETCH(const QByteArray, payload);
    CanBusPlayer player;
    QSignalSpy announced(&player, &CanBusPlayer::updateScreenInfo);

    player.suppScreen(payload);

    using Screens = QMap<int, bool>;
    QFETCH(const Screens, expected);
    QCOMPARE(player.getSuppScrennInfo(), expected);
    QCOMPARE(announced.count(), 1);
    QCOMPARE(announced.at(0).at(0).value<Screens>(), expected);
}

void TestScreens::announcesTheScreensChangedOrNot()
{
    CanBusPlayer player;
    QSignalSpy announced(&player, &CanBusPlayer::updateScreenInfo);
    player.suppScreen(bytes("1f"));
    player.suppScreen(bytes("1f"));
    player.suppScreen(bytes("1f"));
    QCOMPARE(announced.count(), 3);
}

void TestScreens::forgetsTheFormerScreens()
{
    CanBusPlayer player;
    player.suppScreen(bytes("1f"));
    player.suppScreen(bytes("04"));
    QCOMPARE(player.getSuppScrennInfo(), screens(false, false, true, false, false));
}

void TestScreens::knowsTheScreensWhileItAnnouncesThem()
{
    CanBusPlayer player;
    QMap<int, bool> atSignal;
    connect(&player, &CanBusPlayer::updateScreenInfo, this, [&] { atSignal = player.getSuppScrennInfo(); });
    player.suppScreen(bytes("11"));
    QCOMPARE(atSignal, screens(true, false, false, false, true));
}

void TestScreens::handsOutACopyOfTheScreens()
{
    CanBusPlayer player;
    player.suppScreen(bytes("00"));
    QMap<int, bool> copy = player.getSuppScrennInfo();
    copy[0] = true;
    QCOMPARE(player.getSuppScrennInfo(), screens(false, false, false, false, false));
}

void TestScreens::logsTheScreensByteAndEveryScreen()
{
    CanBusPlayer player;
    player.suppScreen(bytes("1a 00 00"));
    QCOMPARE(m_log->messages("[DBG]"),
             (QStringList {"3 1a 26", "0 : false", "1 : true", "2 : false", "3 : true", "4 : true"}));
    QCOMPARE(m_log->messages("[ERR]"), QStringList());
}

void TestScreens::leavesABoxScreenBeforeItReturns_data()
{
    QTest::addColumn<int>("display");
    QTest::newRow("gauges") << 73;
    QTest::newRow("vehicle") << 74;
    QTest::newRow("climate") << 75;
    QTest::newRow("parking") << 76;
}

void TestScreens::leavesABoxScreenBeforeItReturns()
{
    QFETCH(const int, display);
    CanBusPlayer player;
    ApplicationWatch application;
    show(display);

    player.onChangeDsp(bytes("00"));
    QCOMPARE(application.takeTouches(), QStringList {"15 -3 -1"});

    QCoreApplication::processEvents();
    QCOMPARE(application.takeTouches(), QStringList());
}

void TestScreens::leavesNoOtherDisplay_data()
{
    QTest::addColumn<int>("display");
    QTest::newRow("an ordinary screen") << 0;
    QTest::newRow("the view without the camera") << 25;
    QTest::newRow("the one before the gauges") << 72;
    QTest::newRow("the text screen") << 77;
    QTest::newRow("the box's camera") << 78;
    QTest::newRow("no known display") << -1;
}

void TestScreens::leavesNoOtherDisplay()
{
    QFETCH(const int, display);
    CanBusPlayer player;
    ApplicationWatch application;
    show(display);

    player.onChangeDsp(bytes("00"));
    QCoreApplication::processEvents();

    QCOMPARE(application.takeTouches(), QStringList());
    QCOMPARE(m_log->messages("[ERR]"), QStringList());
}

void TestScreens::asksForTheDisplayAtEachRequest()
{
    CanBusPlayer player;
    ApplicationWatch application;
    show(75);
    player.onChangeDsp(bytes("00"));
    show(0);
    player.onChangeDsp(bytes("00"));
    show(73);
    player.onChangeDsp(bytes("00"));
    QCOMPARE(application.takeTouches(), (QStringList {"15 -3 -1", "15 -3 -1"}));
}

void TestScreens::movesOnAScreenOnceTheEventLoopRuns_data()
{
    QTest::addColumn<QByteArray>("payload");
    QTest::addColumn<QString>("touch");
    QTest::newRow("request 1") << bytes("01") << "83 -1 5";
    QTest::newRow("request 2") << bytes("02") << "81 -1 5";
    QTest::newRow("request 3") << bytes("03") << "82 -1 5";
    QTest::newRow("request 4") << bytes("04") << "84 -1 5";
    QTest::newRow("only the first byte counts") << bytes("02 00 ff") << "81 -1 5";
}

void TestScreens::movesOnAScreenOnceTheEventLoopRuns()
{
    QFETCH(const QByteArray, payload);
    QFETCH(const QString, touch);
    CanBusPlayer player;
    ApplicationWatch application;
    show(75);

    player.onChangeDsp(payload);
    QCOMPARE(application.types, QList<int>());

    QTRY_COMPARE_WITH_TIMEOUT(application.types, QList<int> {1008}, kLongestWaitMs);
    QCOMPARE(application.takeTouches(), QStringList {touch});
}

void TestScreens::movesOnEveryDisplay_data()
{
    QTest::addColumn<int>("display");
    QTest::newRow("an ordinary screen") << 0;
    QTest::newRow("parking") << 76;
    QTest::newRow("the text screen") << 77;
    QTest::newRow("the box's camera") << 78;
}

void TestScreens::movesOnEveryDisplay()
{
    QFETCH(const int, display);
    CanBusPlayer player;
    ApplicationWatch application;
    show(display);
    player.onChangeDsp(bytes("04"));
    QTRY_COMPARE_WITH_TIMEOUT(application.types, QList<int> {1008}, kLongestWaitMs);
    QCOMPARE(application.takeTouches(), QStringList {"84 -1 5"});
}

void TestScreens::keepsTheOrderOfItsMoves()
{
    CanBusPlayer player;
    ApplicationWatch application;
    player.onChangeDsp(bytes("04"));
    player.onChangeDsp(bytes("01"));
    player.onChangeDsp(bytes("01"));
    QTRY_COMPARE_WITH_TIMEOUT(application.types.size(), 3, kLongestWaitMs);
    QCOMPARE(application.takeTouches(), (QStringList {"84 -1 5", "83 -1 5", "83 -1 5"}));
}

void TestScreens::postsMovesWithNormalPriority()
{
    CanBusPlayer player;
    ApplicationWatch application;
    postMarker(kFirstMarker);
    postMarker(kLowMarker, Qt::LowEventPriority);
    player.onChangeDsp(bytes("01"));
    postMarker(kSecondMarker);
    postMarker(kHighMarker, Qt::HighEventPriority);
    QTRY_COMPARE_WITH_TIMEOUT(application.types,
                              (QList<int> {kHighMarker, kFirstMarker, 1008, kSecondMarker, kLowMarker}),
                              kLongestWaitMs);
}

void TestScreens::serializesATouch_data()
{
    // Four 32-bit words in the byte order of the machine, which is little-endian here as on the head unit.
    QTest::addColumn<QByteArray>("payload");
    QTest::addColumn<QByteArray>("serialized");
    QTest::newRow("leave") << bytes("00") << bytes("f0030000 0f000000 fdffffff ffffffff");
    QTest::newRow("request 1") << bytes("01") << bytes("f0030000 53000000 ffffffff 05000000");
    QTest::newRow("request 2") << bytes("02") << bytes("f0030000 51000000 ffffffff 05000000");
    QTest::newRow("request 3") << bytes("03") << bytes("f0030000 52000000 ffffffff 05000000");
    QTest::newRow("request 4") << bytes("04") << bytes("f0030000 54000000 ffffffff 05000000");
}

void TestScreens::serializesATouch()
{
    QFETCH(const QByteArray, payload);
    QFETCH(const QByteArray, serialized);
    CanBusPlayer player;
    ApplicationWatch application;
    show(73);
    player.onChangeDsp(payload);
    QTRY_COMPARE_WITH_TIMEOUT(application.serialized, QList<QByteArray> {serialized}, kLongestWaitMs);
}

void TestScreens::refusesOtherRequests_data()
{
    QTest::addColumn<QByteArray>("payload");
    QTest::newRow("the first one behind the known") << bytes("05");
    QTest::newRow("the greatest signed byte") << bytes("7f");
    QTest::newRow("128 is not negative") << bytes("80");
    QTest::newRow("255 is not -1") << bytes("ff");
    QTest::newRow("a known one in the second byte") << bytes("05 01");
}

void TestScreens::refusesOtherRequests()
{
    QFETCH(const QByteArray, payload);
    CanBusPlayer player;
    ApplicationWatch application;
    show(75);

    player.onChangeDsp(payload);
    QCoreApplication::processEvents();

    QCOMPARE(m_log->messages("[ERR]"), QStringList {"data is error!!!!!"});
    QCOMPARE(m_log->lines().constLast().type, QtCriticalMsg);
    QCOMPARE(application.types, QList<int>());
}

void TestScreens::readsAnEmptyRequestAsLeave()
{
    CanBusPlayer player;
    ApplicationWatch application;
    show(74);
    player.onChangeDsp(QByteArray());
    QCOMPARE(application.takeTouches(), QStringList {"15 -3 -1"});
    QCOMPARE(m_log->messages("[ERR]"), QStringList());
}

void TestScreens::logsTheSizeAndTheRequest()
{
    CanBusPlayer player;
    ApplicationWatch application;
    player.onChangeDsp(bytes("00"));
    player.onChangeDsp(bytes("03 00"));
    player.onChangeDsp(bytes("ff 00 00"));
    player.onChangeDsp(QByteArray());
    QCOMPARE(m_log->messages("[DBG]"), (QStringList {"1 0", "2 3", "3 255", "0 0"}));
}

QTEST_GUILESS_MAIN(TestScreens)
#include "tst_screens.moc"
