#include "virtualclock.h"

#include <QtCore/QCoreApplication>
#include <QtCore/QElapsedTimer>
#include <QtCore/QTimer>
#include <QtTest/QTest>

using canbus::monitor::VirtualClock;

class tst_monitor_virtualclock : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init();
    void standsStillByItself();
    void letsTimersExpireInOrderAtTheirTimes();
    void repeatsTimers();
    void forgetsStoppedTimers();
    void timersMayStartTimers();
    void deliversWhatIsPostedBeforeTheNextTimer();
    void timersOfAStandstillNeverExpire();
    void passesAYearAtOnce();
    void neverGoesBack();

private:
    VirtualClock *clock() { return VirtualClock::instance(); }
    void record(QTimer &timer, const QString &name)
    {
        connect(&timer, &QTimer::timeout, this,
                [this, name] { m_expired << name + '@' + QString::number(clock()->nowUs() - m_startUs); });
    }

    qint64 m_startUs = 0;
    QStringList m_expired;
};

void tst_monitor_virtualclock::init()
{
    m_startUs = clock()->nowUs();
    m_expired.clear();
}

void tst_monitor_virtualclock::standsStillByItself()
{
    QTimer timer;
    record(timer, "a");
    timer.start(0);
    QCoreApplication::processEvents();
    QCOMPARE(m_expired, QStringList());
    QCOMPARE(clock()->nowUs(), m_startUs);
}

void tst_monitor_virtualclock::letsTimersExpireInOrderAtTheirTimes()
{
    QTimer late;
    QTimer early;
    for (QTimer *timer : {&late, &early})
        timer->setSingleShot(true);
    record(late, "late");
    record(early, "early");
    late.start(300);
    early.start(20);
    QVERIFY(early.remainingTime() == 20);
    clock()->advanceTo(m_startUs + 299999);
    QCOMPARE(m_expired, QStringList {"early@20000"});
    QCOMPARE(clock()->nowUs(), m_startUs + 299999);
    clock()->advanceTo(m_startUs + 300000);
    QCOMPARE(m_expired, (QStringList {"early@20000", "late@300000"}));
}

void tst_monitor_virtualclock::repeatsTimers()
{
    QTimer timer;
    record(timer, "a");
    timer.start(10);
    clock()->advanceTo(m_startUs + 35000);
    QCOMPARE(m_expired, (QStringList {"a@10000", "a@20000", "a@30000"}));
}

void tst_monitor_virtualclock::forgetsStoppedTimers()
{
    QTimer timer;
    record(timer, "a");
    timer.start(10);
    timer.stop();
    {
        QTimer destroyed;
        record(destroyed, "b");
        destroyed.start(10);
    }
    clock()->advanceTo(m_startUs + 35000);
    QCOMPARE(m_expired, QStringList());
}

void tst_monitor_virtualclock::timersMayStartTimers()
{
    QTimer first;
    QTimer second;
    first.setSingleShot(true);
    second.setSingleShot(true);
    record(first, "first");
    record(second, "second");
    connect(&first, &QTimer::timeout, &second, [&second] { second.start(5); });
    first.start(10);
    clock()->advanceTo(m_startUs + 20000);
    QCOMPARE(m_expired, (QStringList {"first@10000", "second@15000"}));
}

void tst_monitor_virtualclock::deliversWhatIsPostedBeforeTheNextTimer()
{
    QTimer timer;
    record(timer, "a");
    timer.start(10);
    QMetaObject::invokeMethod(&timer, "stop", Qt::QueuedConnection);
    clock()->advanceTo(m_startUs + 20000);
    QCOMPARE(m_expired, QStringList());
}

void tst_monitor_virtualclock::timersOfAStandstillNeverExpire()
{
    QTimer standing;
    QTimer running;
    record(standing, "standing");
    record(running, "running");
    {
        const VirtualClock::Standstill standstill;
        standing.start(10);
    }
    running.start(30);
    clock()->advanceTo(m_startUs + 40000);
    QCOMPARE(m_expired, QStringList {"running@30000"});
    QVERIFY(standing.isActive());
}

void tst_monitor_virtualclock::passesAYearAtOnce()
{
    QElapsedTimer real;
    real.start();
    const qint64 year = qint64(365) * 24 * 3600 * 1000000;
    clock()->advanceTo(m_startUs + year);
    QCOMPARE(clock()->nowUs(), m_startUs + year);
    QVERIFY(real.elapsed() < 60000);
}

void tst_monitor_virtualclock::neverGoesBack()
{
    clock()->advanceTo(m_startUs - 1);
    QCOMPARE(clock()->nowUs(), m_startUs);
}

int main(int argc, char *argv[])
{
    VirtualClock::install();
    const QCoreApplication application(argc, argv);
    tst_monitor_virtualclock test;
    return QTest::qExec(&test, argc, argv);
}
#include "tst_monitor_virtualclock.moc"
