#include "crashstack.h"
#include "traffic.h"

#include <canbusplayer.h>
#include <velcanbusprotocol.h>
#include <velclimategroupcmd.h>
#include <velgaugesgroupcmd.h>

#include <QtCore/QCoreApplication>
#include <QtCore/QDeadlineTimer>
#include <QtCore/QFile>
#include <QtCore/QHash>
#include <QtCore/QTimer>

#include <atomic>
#include <cstdlib>
#include <memory>
#include <mutex>
#include <optional>

// A head unit that leaves its process in the middle of traffic, in the way that its arguments say, each of
// the form name=value. On standard output it says "ready" when the box may speak, "up" when the link is, and
// "exit N" when it begins to leave, at N milliseconds of the system's monotonic clock. It prints nothing
// else.

using namespace canbus;

namespace {

constexpr int kCommandMs = 3;
constexpr int kRenewMs = 12;
constexpr int kFeedMs = 4;
constexpr int kHangUpCheckMs = 2;
constexpr int kLastMomentsMs = 25;
constexpr int kLongestWaitForSlotMs = 300; // when no signal comes that the slot could be called by

std::unique_ptr<VelCanBusProtocol> keptToTheLast; // destroyed with the static objects

void say(const QByteArray &line)
{
    const QByteArray whole = line + '\n';
    if (::write(STDOUT_FILENO, whole.constData(), size_t(whole.size())) != whole.size())
        ::abort();
}

/// As the port does.
void logLosses(int count)
{
    for (; count > 0; --count)
        ::dprintf(STDERR_FILENO, "[ERR] void canbus::SerialPort::handleError() -- 9\n");
}

qint64 nowMs()
{
    return QDeadlineTimer::current(Qt::PreciseTimer).deadline();
}

class Plan {
public:
    Plan(int argc, char **argv)
    {
        for (int i = 1; i < argc; ++i) {
            const QString argument = QString::fromLocal8Bit(argv[i]);
            m_values.insert(argument.section(QLatin1Char('='), 0, 0), argument.section(QLatin1Char('='), 1));
        }
    }

    QString text(const char *name) const { return m_values.value(QLatin1String(name)); }
    int number(const char *name) const { return text(name).toInt(); }
    bool has(const char *name, const char *value) const { return text(name) == QLatin1String(value); }

    /// Whether the exit is to be in a slot, on whichever thread.
    bool leavesInSlot() const { return has("end", "slot") || has("end", "parser") || has("end", "port"); }

private:
    QHash<QString, QString> m_values;
};

/// One head unit: lives on main()'s stack, and on it the protocol where the plan says so.
class HeadUnit : public QObject {
    Q_OBJECT

public:
    explicit HeadUnit(const Plan &plan)
        : m_plan(plan)
    {
        connect(&m_exitTimer, &QTimer::timeout, this, &HeadUnit::onExitDue);
        connect(&m_commandTimer, &QTimer::timeout, this, &HeadUnit::sendCommands);
        connect(&m_renewTimer, &QTimer::timeout, this, &HeadUnit::renew);
        connect(&m_feedTimer, &QTimer::timeout, this, &HeadUnit::feed);
        connect(&m_hangUpTimer, &QTimer::timeout, this, &HeadUnit::lookForHangUp);
        m_exitTimer.setSingleShot(true);
    }

    void begin()
    {
        makeProtocol();
        initAll();
        say("ready");
        if (m_plan.has("when", "start"))
            leaveWithoutLoop();
        else
            prepareExit();
    }

    /// @return the status of the process, when it leaves by main()
    int run()
    {
        if (m_plan.has("when", "start"))
            return status();
        if (!m_plan.has("end", "return"))
            return QCoreApplication::exec();
        while (!m_leaving)
            QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
        return status();
    }

private Q_SLOTS:
    void onLinkStatus(bool up)
    {
        const bool isAwaited = m_plan.has("when", "up") || m_plan.has("when", "hungup");
        if (!up || m_wasUp || !isAwaited)
            return;
        m_wasUp = true;
        say("up");
        startTraffic();
        if (m_plan.has("when", "up"))
            m_exitTimer.start(m_plan.number("after"));
        else
            m_hangUpTimer.start(kHangUpCheckMs);
    }

    void onExitDue()
    {
        if (!m_plan.leavesInSlot() || m_exitInSlot) {
            leave();
            return;
        }
        m_exitInSlot = true;
        m_exitTimer.start(kLongestWaitForSlotMs);
    }

    void onTemperature()
    {
        if (m_exitInSlot && m_plan.has("end", "slot"))
            leave();
    }

private:
    /// A slot that is connected directly, on a thread of the library's: not while the main thread is at it.
    void leaveHere()
    {
        const std::unique_lock<std::mutex> turn(m_turn, std::try_to_lock);
        if (m_exitInSlot && turn)
            leaveInTurn();
    }

    int status() const { return m_plan.number("status"); }

    VelCanBusProtocol *protocol() { return m_onStack ? &*m_onStack : m_protocol; }

    void makeProtocol()
    {
        if (m_plan.has("protocol", "stack"))
            m_onStack.emplace();
        else
            m_protocol = new VelCanBusProtocol(m_plan.has("protocol", "child") ? qApp : nullptr);
        if (m_plan.has("protocol", "static"))
            keptToTheLast.reset(m_protocol);
        if (m_plan.has("end", "parser"))
            connect(
                protocol(), &CanbusProtocol::notifyClimateInfo, protocol(), [this] { leaveHere(); },
                Qt::DirectConnection);
    }

    void destroyProtocol()
    {
        if (m_onStack)
            m_onStack.reset();
        else if (keptToTheLast)
            keptToTheLast.reset();
        else
            delete m_protocol;
        m_protocol = nullptr;
    }

    void init(CanbusProtocol *given)
    {
        const QString missing = m_plan.has("init", "missing") ? QStringLiteral("-missing") : QString();
        CanBusPlayer::instance()->setUartPort(m_plan.text("port") + missing, 57600);
        CanBusPlayer::instance()->init(given);
    }

    void initAll()
    {
        connect(VelClimateGroupCmd::instance(), &VelClimateGroupCmd::updateClimateMainTemp, this,
                &HeadUnit::onTemperature);
        if (m_plan.has("end", "port"))
            connect(
                CanBusReadBuff::instance(), &CanBusReadBuff::received, CanBusReadBuff::instance(),
                [this] { leaveHere(); }, Qt::DirectConnection);
        if (m_plan.has("init", "never"))
            return;
        connect(CanBusPlayer::instance(), &CanBusPlayer::canbusConnectStatus, this, &HeadUnit::onLinkStatus);
        init(m_plan.has("init", "null") ? nullptr : protocol());
        if (m_plan.has("init", "again"))
            init(protocol());
        if (m_plan.has("init", "other"))
            init(new VelCanBusProtocol(qApp));
    }

    void prepareExit()
    {
        if (!m_plan.has("when", "handshake"))
            return;
        startTraffic();
        m_exitTimer.start(m_plan.number("after"));
    }

    void startTraffic()
    {
        if (m_plan.number("commands"))
            m_commandTimer.start(kCommandMs);
        if (m_plan.number("renew"))
            m_renewTimer.start(kRenewMs);
        if (m_plan.number("feed"))
            m_feedTimer.start(kFeedMs);
    }

    void leaveWithoutLoop()
    {
        m_exitInSlot = m_plan.leavesInSlot();
        const QDeadlineTimer end(m_plan.number("after"), Qt::PreciseTimer);
        for (int rounds = 0; rounds == 0 || !end.hasExpired(); ++rounds) {
            if (m_plan.number("commands") && rounds < 10)
                sendCommands();
            if (m_plan.number("feed"))
                feed();
            ::usleep(1000);
        }
        leave();
    }

    void sendCommands()
    {
        const std::unique_lock<std::mutex> turn(m_turn, std::try_to_lock);
        if (!turn)
            return;
        VelClimateGroupCmd::instance()->acBtn();
        VelGaugesGroupCmd::instance()->Gauge2_TopLeft(m_frames % 2 == 0);
    }

    void renew()
    {
        const std::unique_lock<std::mutex> turn(m_turn, std::try_to_lock);
        if (!turn)
            return;
        destroyProtocol();
        makeProtocol();
        if (!m_plan.has("init", "never") && !m_plan.has("init", "null"))
            init(protocol());
    }

    /// What the port's thread does with bytes of a line, for a head unit without one.
    void feed()
    {
        const std::unique_lock<std::mutex> turn(m_turn, std::try_to_lock);
        if (!turn)
            return;
        CanBusReadBuff *const buffer = CanBusReadBuff::instance();
        const QVector<QByteArray> &frames = trafficFrames();
        const QMutexLocker lock(&buffer->mutex);
        buffer->data += frames.at(m_frames++ % frames.size());
    }

    void lookForHangUp()
    {
        if (QFile::exists(m_plan.text("port")))
            return;
        m_hangUpTimer.stop();
        m_exitTimer.start(m_plan.number("after"));
    }

    void leave()
    {
        const std::lock_guard<std::mutex> turn(m_turn);
        leaveInTurn();
    }

    void leaveInTurn()
    {
        m_leaving = true;
        say("exit " + QByteArray::number(nowMs()));
        misbehaveAsPlanned();
        if (m_plan.has("protocol", "deleted"))
            destroyProtocol();
        if (m_plan.has("end", "exit") || m_plan.leavesInSlot())
            ::exit(status());
        if (m_plan.has("end", "quit"))
            QCoreApplication::quit();
        if (m_plan.has("end", "loop"))
            QCoreApplication::exit(status());
    }

    /// What no exit should be like, to show that it would be noticed.
    void misbehaveAsPlanned()
    {
        if (m_plan.has("fault", "crash"))
            std::atexit([] { ::raise(SIGSEGV); });
        if (m_plan.has("fault", "status"))
            std::atexit([] { ::_exit(7); });
        if (m_plan.has("fault", "message"))
            std::atexit([] { ::dprintf(STDERR_FILENO, "QThread: Destroyed while still running\n"); });
        if (m_plan.has("fault", "alarm"))
            std::atexit([] { logLosses(1); });
        if (m_plan.has("fault", "alarms"))
            std::atexit([] { logLosses(10); });
        if (m_plan.has("fault", "talk"))
            std::atexit([] { say("goodbye"); });
        if (m_plan.has("fault", "slow"))
            std::atexit([] { ::usleep(1500000); });
        if (m_plan.has("fault", "stuck"))
            std::atexit([] { ::pause(); });
    }

    const Plan &m_plan;
    std::optional<VelCanBusProtocol> m_onStack;
    VelCanBusProtocol *m_protocol = nullptr;
    QTimer m_exitTimer;
    QTimer m_commandTimer;
    QTimer m_renewTimer;
    QTimer m_feedTimer;
    QTimer m_hangUpTimer;
    int m_frames = 0;
    bool m_wasUp = false;
    std::mutex m_turn; ///< one thread of the head unit's own at a time, and none once one of them leaves
    std::atomic<bool> m_exitInSlot {false};
    std::atomic<bool> m_leaving {false};
};

} // namespace

int main(int argc, char **argv)
{
    printStackOnCrash();
    // Registered first, so it comes last: a thread that is still running uses what is gone by then.
    std::atexit([] { ::usleep(kLastMomentsMs * 1000); });
    const Plan plan(argc, argv);
    auto application = std::make_unique<QCoreApplication>(argc, argv);
    if (plan.has("application", "leaked"))
        (void)application.release();
    HeadUnit headUnit(plan);
    headUnit.begin();
    return headUnit.run();
}

#include "exithost.moc"
