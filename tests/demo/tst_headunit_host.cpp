#include "host.h"

#include <longestwait.h>

#include <QtCore/QCoreApplication>
#include <QtGui/QGuiApplication>
#include <QtGui/QWindow>
#include <QtTest/QSignalSpy>
#include <QtTest/QTest>

#include <datetimemanager.h>
#include <eventhandler.h>
#include <srcdsplctrl.h>
#include <touchevent.h>

using canbus::headunit::Host;
using kddatetime::DateTimeManager;

// What the head unit takes from the rest of the host, without a screen.

class HeadUnitHost : public QObject {
    Q_OBJECT

private:
    static void postTouch(Qx::Touch touch)
    {
        QCoreApplication::postEvent(qApp, new TouchEvent(touch, -1, 5));
    }

    static void fixTime(int hour, int minute, int second, int ms)
    {
        DateTimeManager::instance()->setCurrentDateTime(
            QDateTime(QDate(2026, 11, 21), QTime(hour, minute, second, ms)));
    }

private Q_SLOTS:
    void cleanup() { DateTimeManager::instance()->setCurrentDateTime({}); }

    void theClockIsTheHosts()
    {
        fixTime(12, 34, 30, 0);
        const Host host;
        QCOMPARE(host.clock(), QStringLiteral("12:34"));
    }

    void theClockChangesWithTheMinuteAndNotBefore()
    {
        fixTime(23, 59, 59, 800);
        Host host;
        QSignalSpy changes(&host, &Host::clockChanged);
        fixTime(0, 0, 0, 10);
        QCOMPARE(host.clock(), QStringLiteral("23:59"));
        QTRY_COMPARE_WITH_TIMEOUT(host.clock(), QStringLiteral("00:00"), kLongestWaitMs);
        QCOMPARE(changes.size(), 1);
    }

    void eachPageIsADisplayOfTheHost_data()
    {
        QTest::addColumn<int>("display");
        QTest::newRow("climate") << 75;
        QTest::newRow("gauges") << 73;
        QTest::newRow("vehicle") << 74;
        QTest::newRow("parking") << 76;
        QTest::newRow("menu") << 77;
        QTest::newRow("link") << 0;
    }

    void eachPageIsADisplayOfTheHost()
    {
        QFETCH(int, display);
        Host host;
        host.showPage(QTest::currentDataTag());
        QCOMPARE(int(EventHandler::instance()->srcDsplCtrl()->currentDspl()), display);
    }

    void theCameraViewIsNotTakenFromTheParkingPage()
    {
        Host host;
        SrcDsplCtrl *const control = EventHandler::instance()->srcDsplCtrl();
        control->setCurrentDspl(C::DSPL_BoxCamera);
        host.showPage(QStringLiteral("parking"));
        QCOMPARE(control->currentDspl(), C::DSPL_BoxCamera);
        host.showPage(QStringLiteral("climate"));
        QCOMPARE(control->currentDspl(), C::DSPL_Climate);
    }

    void wishesOfTheBoxAreFollowedWhileNobodyTouches_data()
    {
        QTest::addColumn<int>("touch");
        QTest::addColumn<QString>("page");
        QTest::newRow("back") << 15 << "climate";
        QTest::newRow("vehicle") << 81 << "vehicle";
        QTest::newRow("climate") << 82 << "climate";
        QTest::newRow("gauges") << 83 << "gauges";
    }

    void wishesOfTheBoxAreFollowedWhileNobodyTouches()
    {
        QFETCH(int, touch);
        QFETCH(QString, page);
        const Host host(0);
        QSignalSpy wishes(&host, &Host::pageWanted);
        postTouch(Qx::Touch(touch));
        QTRY_COMPARE_WITH_TIMEOUT(wishes.size(), 1, kLongestWaitMs);
        QCOMPARE(wishes.constFirst().constFirst().toString(), page);
    }

    void wishesAreNotFollowedUnderAFinger()
    {
        const Host quick(0);
        const Host patient(60000);
        QWindow window;
        window.show();
        QTest::mouseClick(&window, Qt::LeftButton);
        QSignalSpy followed(&quick, &Host::pageWanted);
        QSignalSpy wishes(&patient, &Host::pageWanted);
        postTouch(Qx::Touch83);
        QTRY_COMPARE_WITH_TIMEOUT(followed.size(), 1, kLongestWaitMs);
        QCOMPARE(wishes.size(), 0);
    }

    void wishesAreNotFollowedInReverse()
    {
        Host host(0);
        QSignalSpy wishes(&host, &Host::pageWanted);
        host.setReverse(true);
        QVERIFY(host.isReverse());
        postTouch(Qx::Touch83);
        QCoreApplication::sendPostedEvents();
        QCOMPARE(wishes.size(), 0);
        host.setReverse(false);
        postTouch(Qx::Touch83);
        QCoreApplication::sendPostedEvents();
        QCOMPARE(wishes.size(), 1);
    }

    void reverseIsToldOnAChange()
    {
        Host host;
        QSignalSpy changes(&host, &Host::reverseChanged);
        host.setReverse(true);
        host.setReverse(true);
        host.toggleReverse();
        QCOMPARE(changes.size(), 2);
        QVERIFY(!host.isReverse());
    }
};

QTEST_MAIN(HeadUnitHost)

#include "tst_headunit_host.moc"
