#include "exitrun.h"

#include "traffic.h"

#include <runnable.h>

#include <QtCore/QDeadlineTimer>

#include <csignal>

namespace {

constexpr int kTickMs = 5;
constexpr int kRestartMs = 500;
constexpr int kLatestHangUpMs = 60;
constexpr int kGraceMs = 4000; // to an end that comes too late, so that it is known how late
constexpr int kMostLossLines = 9;

QProcessEnvironment environment(bool logs)
{
    QProcessEnvironment all = QProcessEnvironment::systemEnvironment();
    all.insert(QStringLiteral("QT_LOGGING_RULES"),
               logs ? QStringLiteral("default.debug=true") : QStringLiteral("default.debug=false"));
    // Leaving a protocol alive is one of the ways to leave.
    all.insert(QStringLiteral("ASAN_OPTIONS"), QStringLiteral("detect_leaks=0"));
    return all;
}

} // namespace

ExitRun::ExitRun(const ExitPlan &plan, const ExitLimits &limits, quint32 seed)
    : m_plan(plan)
    , m_limits(limits)
    , m_chance(seed)
{
    connect(&m_tickTimer, &QTimer::timeout, this, &ExitRun::tick);
    connect(&m_restartTimer, &QTimer::timeout, this, &ExitRun::restartBox);
    connect(&m_hangUpTimer, &QTimer::timeout, this, &ExitRun::hangUp);
    connect(&m_watch, &QTimer::timeout, this, &ExitRun::giveUpWaiting);
    m_hangUpTimer.setSingleShot(true);
    m_watch.setSingleShot(true);
    start();
}

bool ExitRun::isPlanned(const char *name, const char *value) const
{
    return m_plan.value(QLatin1String(name)) == QLatin1String(value);
}

void ExitRun::start()
{
    m_clock.start();
    QStringList command = m_limits.wrapper + runnable(QStringLiteral(CANBUS_EXITHOST));
    command += argumentsOf(m_plan);
    QFile::link(m_line.name(), link());
    command += QStringLiteral("port=") + link();
    m_process.setProcessEnvironment(environment(isPlanned("log", "1")));
    connect(&m_process, &QProcess::readyReadStandardOutput, this, &ExitRun::readLines);
    connect(&m_process, qOverload<int, QProcess::ExitStatus>(&QProcess::finished), this,
            [this](int, QProcess::ExitStatus how) { onFinished(how); });
    m_watch.start(m_limits.exitMs);
    m_process.start(command.takeFirst(), command);
}

void ExitRun::readLines()
{
    while (m_process.canReadLine())
        onLine(m_process.readLine().trimmed());
}

void ExitRun::onLine(const QByteArray &line)
{
    if (line.startsWith("exit ")) {
        m_exitMs = line.mid(5).toLongLong();
        m_watch.start(m_limits.endMs + kGraceMs);
        m_said += "exit ";
        return;
    }
    m_said += line + ' ';
    if (line == "ready") {
        m_tickTimer.start(kTickMs);
        if (isPlanned("when", "up") || isPlanned("when", "hungup")) {
            restartBox();
            m_restartTimer.start(kRestartMs);
        }
    } else if (line == "up") {
        m_isUp = true;
        m_restartTimer.stop();
        if (isPlanned("when", "hungup"))
            m_hangUpTimer.start(chance(kLatestHangUpMs));
    }
}

void ExitRun::tick()
{
    const QByteArray received = m_line.received().mid(m_readFromLine);
    m_readFromLine += received.size();
    if (!received.isEmpty())
        carryOut(m_box.receive(received, m_clock.elapsed()));
    carryOut(m_box.advance(m_clock.elapsed()));
    flood();
}

/// Until the link is up, no more than the head unit can read beside the answers; then more than it can.
void ExitRun::flood()
{
    const int blocks = m_isUp || isPlanned("when", "handshake") ? chance(4) : int(chance(4) == 0);
    for (int i = 0; i < blocks; ++i) {
        QByteArray block = trafficFrames().at(chance(trafficFrames().size()));
        if (m_isUp && chance(8) == 0)
            block[chance(block.size())] = char(quint8(chance(256)));
        m_line.send(block);
    }
}

void ExitRun::carryOut(const boxsim::BenchOutput &output)
{
    for (const boxsim::LineStep &step : output.line)
        m_line.send(step.bytes);
}

/// A box that is switched on says that it is ready, so nobody has to wait for the first connect request.
void ExitRun::restartBox()
{
    boxsim::Instruction restart;
    restart.kind = boxsim::Instruction::Kind::Restart;
    carryOut(m_box.carryOut(restart, m_clock.elapsed()));
}

/// The head unit is told by the link, which goes with the line.
void ExitRun::hangUp()
{
    m_line.hangUp();
    QFile::remove(link());
}

void ExitRun::giveUpWaiting()
{
    m_complaints +=
        m_exitMs < 0 ? QStringLiteral("has not come to its exit") : QStringLiteral("has not ended");
    // Prints the stack of where it hangs.
    sendSignal(m_process, SIGABRT);
    QTimer::singleShot(kGraceMs, &m_process, [this] { sendSignal(m_process, SIGKILL); });
}

void ExitRun::onFinished(QProcess::ExitStatus how)
{
    const qint64 now = QDeadlineTimer::current(Qt::PreciseTimer).deadline();
    m_watch.stop();
    m_tickTimer.stop();
    m_restartTimer.stop();
    m_hangUpTimer.stop();
    readLines();
    if (m_exitMs >= 0)
        m_endMs = int(now - m_exitMs);
    judgeEnd(how);
    judgeMessages();
    Q_EMIT ended();
}

void ExitRun::judgeEnd(QProcess::ExitStatus how)
{
    const int status = m_process.exitCode();
    if (how != QProcess::NormalExit)
        m_complaints += QStringLiteral("was ended by signal %1").arg(status);
    else if (status != m_plan[QStringLiteral("status")].toInt())
        m_complaints += QStringLiteral("has ended with status %1").arg(status);
    if (m_endMs > m_limits.endMs)
        m_complaints += QStringLiteral("took %1 ms from its exit to its end").arg(m_endMs);
    const bool connects = isPlanned("when", "up") || isPlanned("when", "hungup");
    const QByteArray expected = connects ? "ready up exit " : "ready exit ";
    if (m_said != expected)
        m_complaints += QStringLiteral("has said: ") + QString::fromLocal8Bit(m_said);
}

void ExitRun::judgeMessages()
{
    const QList<QByteArray> messages = m_process.readAllStandardError().split('\n');
    for (const QByteArray &message : messages) {
        if (!message.isEmpty() && !isExpected(message))
            m_complaints += QStringLiteral("message: ") + QString::fromLocal8Bit(message);
    }
}

/// What the plan itself brings about: not the exit.
bool ExitRun::isExpected(const QByteArray &message)
{
    if (message.startsWith("[DBG] "))
        return isPlanned("log", "1");
    if (!message.startsWith("[ERR] "))
        return false;
    const QByteArray text = message.mid(message.indexOf(" -- ") + 4);
    const bool lost = isPlanned("when", "hungup");
    const bool missing = isPlanned("init", "missing") || (lost && isPlanned("renew", "1"));
    return text == "data is error" // labels that are empty, or damaged
        || (missing && (text == "1" || text == "not open")) || (lost && text == "write error")
        || (lost && (text == "8" || text == "9") && ++m_lossLines <= kMostLossLines)
        || (isPlanned("init", "null") && text.startsWith("no protocol: "))
        || (isPlanned("commands", "1") && text.startsWith("canbus sendCacheBuffer is full"));
}
