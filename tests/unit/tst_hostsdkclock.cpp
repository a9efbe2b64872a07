#include <datetimemanager.h>

#include <longestwait.h>

#include <QtTest/QTest>

#include <ctime>

using kddatetime::DateTimeManager;

/// The host's clock, in a time zone two hours east of Greenwich.
class TestHostSdkClock : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void cleanup();

    void isOneObject();
    void tellsTheRealTime();
    void tellsAFixedTime();
    void tellsAFixedTimeInTheAskedSpecification();
    void tellsTheRealTimeInTheAskedSpecification();
    void returnsToTheRealTime();

private:
    static DateTimeManager *clock() { return DateTimeManager::instance(); }
    /// Whether the clock tells the computer's time.
    static bool tellsNow()
    {
        const QDateTime before = QDateTime::currentDateTimeUtc();
        const QDateTime told = clock()->currentDateTime();
        return before <= told && told <= QDateTime::currentDateTimeUtc();
    }
};

void TestHostSdkClock::initTestCase()
{
    qputenv("TZ", "TST-2");
    tzset();
}

void TestHostSdkClock::cleanup()
{
    clock()->setCurrentDateTime(QDateTime());
}

void TestHostSdkClock::isOneObject()
{
    QVERIFY(clock());
    QCOMPARE(DateTimeManager::instance(), DateTimeManager::instance());
}

void TestHostSdkClock::tellsTheRealTime()
{
    QVERIFY(tellsNow());
    QCOMPARE(clock()->currentDateTime().timeSpec(), Qt::LocalTime);
}

void TestHostSdkClock::tellsAFixedTime()
{
    clock()->setCurrentDateTime(QDateTime(QDate(2024, 5, 6), QTime(12, 34, 56, 789)));

    const QDateTime told = clock()->currentDateTime();
    QCOMPARE(told.date(), QDate(2024, 5, 6));
    QCOMPARE(told.time(), QTime(12, 34, 56, 789));
    QCOMPARE(told.timeSpec(), Qt::LocalTime);
    // It stands still while the computer's clock goes on.
    const QTime start = QTime::currentTime();
    QTRY_VERIFY_WITH_TIMEOUT(QTime::currentTime() != start, kLongestWaitMs);
    QCOMPARE(clock()->currentDateTime().time(), QTime(12, 34, 56, 789));
}

void TestHostSdkClock::tellsAFixedTimeInTheAskedSpecification()
{
    clock()->setCurrentDateTime(QDateTime(QDate(2024, 12, 31), QTime(23, 30), Qt::UTC));

    const QDateTime local = clock()->currentDateTime(Qt::LocalTime);
    QCOMPARE(local.timeSpec(), Qt::LocalTime);
    QCOMPARE(local.date(), QDate(2025, 1, 1));
    QCOMPARE(local.time(), QTime(1, 30));

    const QDateTime utc = clock()->currentDateTime(Qt::UTC);
    QCOMPARE(utc.timeSpec(), Qt::UTC);
    QCOMPARE(utc.date(), QDate(2024, 12, 31));
    QCOMPARE(utc.time(), QTime(23, 30));
}

void TestHostSdkClock::tellsTheRealTimeInTheAskedSpecification()
{
    QCOMPARE(clock()->currentDateTime(Qt::UTC).timeSpec(), Qt::UTC);
    QCOMPARE(clock()->currentDateTime().offsetFromUtc(), 7200);
}

void TestHostSdkClock::returnsToTheRealTime()
{
    clock()->setCurrentDateTime(QDateTime(QDate(2001, 2, 3), QTime(4, 5)));
    QVERIFY(!tellsNow());
    clock()->setCurrentDateTime(QDateTime());
    QVERIFY(tellsNow());
}

QTEST_GUILESS_MAIN(TestHostSdkClock)
#include "tst_hostsdkclock.moc"
