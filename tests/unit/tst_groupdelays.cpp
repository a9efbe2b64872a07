#include "hexbytes.h"
#include "virtualtime.h"

#include "velgaugesgroupcmd.h"
#include "velvehiclegroupcmd.h"

#include <QtCore/QCoreApplication>
#include <QtTest/QTest>

using namespace canbus;

namespace {

/// Virtual time that notes the kind of each timer that is started.
class NotedTimers : public VirtualTime {
public:
    static NotedTimers *install()
    {
        auto *timers = new NotedTimers;
        QCoreApplication::setEventDispatcher(timers);
        return timers;
    }

    void registerTimer(int id, int interval, Qt::TimerType type, QObject *object) override
    {
        started +=
            QStringLiteral("%1 ms, %2").arg(interval).arg(type == Qt::PreciseTimer ? "exactly" : "about");
        VirtualTime::registerTimer(id, interval, type, object);
    }

    QStringList started;
};

} // namespace

/// A coarse timer of 300 ms may be 15 ms early or late.
class GroupDelaysTest : public QObject {
    Q_OBJECT

public:
    explicit GroupDelaysTest(NotedTimers *timers)
        : m_timers(timers)
    {
    }

private Q_SLOTS:
    void init() { m_timers->started.clear(); }
    void delaysGaugeValuesToTheMillisecond();
    void delaysTireTextsToTheMillisecond();

private:
    NotedTimers *m_timers;
};

void GroupDelaysTest::delaysGaugeValuesToTheMillisecond()
{
    VelGaugesGroupCmd gauges;
    gauges.handleGaugeStateValue(bytes("00 01 00 00 0000 0000 0000 0000 00"));
    QCOMPARE(m_timers->started, QStringList {"300 ms, exactly"});
}

void GroupDelaysTest::delaysTireTextsToTheMillisecond()
{
    VelVehicleGroupCmd vehicle;
    vehicle.onVehicleTireText(bytes("00 00 00 41 00"));
    QCOMPARE(m_timers->started, QStringList {"300 ms, exactly"});
}

int main(int argc, char *argv[])
{
    NotedTimers *const timers = NotedTimers::install();
    QCoreApplication application(argc, argv);
    GroupDelaysTest test(timers);
    return QTest::qExec(&test, argc, argv);
}
#include "tst_groupdelays.moc"
