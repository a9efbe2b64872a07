#include "monitor.h"

#include "commandline/exitstatus.h"
#include "commandline/facade/facadeport.h"
#include "commandline/linereader.h"
#include "hostcontrols.h"
#include "linkhints.h"
#include "metamethods.h"
#include "portwatch.h"
#include "recorder.h"
#include "reportlines.h"
#include "standarderror.h"
#include "statslines.h"
#include "targets.h"

#include <QtCore/QCoreApplication>
#include <QtCore/QSocketNotifier>
#include <QtCore/QTimer>

#include <canbusplayer.h>
#include <velcanbusprotocol.h>

#include <utility>

#include <unistd.h>

namespace canbus::monitor {

namespace {

using standardError::complain;

constexpr int kStatsIntervalMs = 10000;
constexpr int kPortIntervalMs = 200;

} // namespace

Monitor::Monitor(Options options, int stopDescriptor)
    : m_options(std::move(options))
    , m_output(STDOUT_FILENO, stopDescriptor)
    , m_host(new HostControls)
    , m_targets(allTargets(m_host.get()))
    , m_spy([this](const QString &object, const QMetaMethod &signal, const QVariantList &arguments) {
        print(signalLine(m_options.form, m_clock.elapsed(), object, signal, arguments));
    })
{
    m_clock.start();
    endWhenTold(stopDescriptor);
}

Monitor::~Monitor()
{
    if (m_recorder)
        m_recorder->stop();
}

int Monitor::run()
{
    for (const QString &text : std::as_const(m_options.calls)) {
        const Outcome<PreparedCall> prepared = prepareCall(m_targets, text);
        if (!prepared) {
            complain(QStringLiteral("--call %1: %2").arg(text, prepared.error()));
            return kWrongArguments;
        }
        m_firstCalls << *prepared;
    }
    QTimer::singleShot(0, this, &Monitor::start);
    const int status = QCoreApplication::exec();
    reportMissedCalls();
    if (m_isOpen && m_options.wantsStats)
        printStats();
    if (m_isOpen)
        giveHints();
    return closeRecording(status);
}

void Monitor::start()
{
    for (const Target &target : std::as_const(m_targets))
        m_spy.watch(target.name, target.object);
    // Queued, so that what the calls lead to is printed after the news that the link is up.
    connect(CanBusPlayer::instance(), &CanBusPlayer::canbusConnectStatus, this, &Monitor::makeFirstCalls,
            Qt::QueuedConnection);
    if (!openRecording())
        return;
    m_isOpen = openPort();
    if (!m_isOpen) {
        if (m_recorder)
            m_recorder->discard();
        complain(facadePortError(m_options.port, m_options.baudRate,
                                 QStringLiteral("name the box's device with --port")));
        end(kFailure);
        return;
    }
    Q_EMIT m_host->portOpened(m_options.port, m_options.baudRate);
    if (m_options.durationMs)
        QTimer::singleShot(*m_options.durationMs, Qt::PreciseTimer, this, [this] {
            if (!endIfPortIsGone())
                end(kSuccess);
        });
    startStats();
    watchPort();
    startReadingStandardInput();
}

bool Monitor::openRecording()
{
    if (m_options.recordFile.isEmpty())
        return true;
    QString error;
    m_recorder = Recorder::open(m_options.recordFile, m_options.port, &error);
    if (!m_recorder) {
        complain(QStringLiteral("--record: ") + error);
        end(kFailure);
        return false;
    }
    connect(
        m_recorder.get(), &Recorder::failed, this, [this] { end(kFailure); }, Qt::QueuedConnection);
    return true;
}

/// @return the status of a program that ends with `status` but for its recording
int Monitor::closeRecording(int status)
{
    if (!m_recorder)
        return status;
    m_recorder->stop();
    const QString error = m_recorder->error();
    if (error.isEmpty())
        return status;
    complain(QStringLiteral("--record: ") + error);
    return kFailure;
}

bool Monitor::openPort()
{
    m_protocol = std::make_unique<VelCanBusProtocol>();
    if (m_recorder)
        Recorder::start(m_recorder, m_protocol.get());
    return openFacadePort(m_options.port, m_options.baudRate, m_protocol.get());
}

void Monitor::startStats()
{
    if (!m_options.wantsStats)
        return;
    m_spy.watch(QStringLiteral("link"), m_protocol->linkHealth());
    auto *const timer = new QTimer(this);
    connect(timer, &QTimer::timeout, this, &Monitor::printStats);
    timer->start(kStatsIntervalMs);
}

/// The library goes on with a port that has failed, in silence.
void Monitor::watchPort()
{
    m_port = std::make_unique<PortWatch>(m_options.port);
    auto *const timer = new QTimer(this);
    connect(timer, &QTimer::timeout, this, &Monitor::checkPort);
    timer->start(kPortIntervalMs);
}

void Monitor::checkPort()
{
    if (m_hasEnded)
        return;
    const quint64 errors = m_protocol->linkHealth()->figures().portErrors;
    // The library's figures are to tell of the loss too: it may be a moment behind.
    const bool isTold = errors > 0 || std::exchange(m_seemsGone, m_port->isGone());
    if (isTold && endIfPortIsGone())
        return;
    if (m_toldPortErrors == 0)
        tellOfPortErrors();
}

/// @return whether it is
bool Monitor::endIfPortIsGone()
{
    m_isGone = m_port->isGone();
    if (m_isGone && !m_hasEnded) {
        complain(QStringLiteral("%1 is gone: connect it and start canbus-monitor again").arg(m_options.port));
        end(kFailure);
    }
    return m_isGone;
}

void Monitor::tellOfPortErrors()
{
    LinkFigures errors;
    errors.portErrors = m_protocol->linkHealth()->figures().portErrors;
    if (errors.portErrors == m_toldPortErrors)
        return;
    m_toldPortErrors = errors.portErrors;
    complainOf(errors);
}

void Monitor::giveHints()
{
    if (m_isGone)
        return; // that says it all
    tellOfPortErrors();
    LinkFigures others = m_protocol->linkHealth()->figures();
    others.portErrors = 0;
    complainOf(others);
}

void Monitor::startReadingStandardInput()
{
    m_standardInput = std::make_unique<LineReader>(
        STDIN_FILENO, [this](const QString &line) { takeLine(line); }, complain);
}

void Monitor::endWhenTold(int stopDescriptor)
{
    if (stopDescriptor < 0)
        return;
    auto *const notifier = new QSocketNotifier(stopDescriptor, QSocketNotifier::Read, this);
    connect(notifier, &QSocketNotifier::activated, this, [this, notifier] {
        notifier->setEnabled(false);
        end(kSuccess);
    });
}

void Monitor::end(int status)
{
    if (m_hasEnded)
        return;
    m_hasEnded = true;
    QCoreApplication::exit(status);
}

void Monitor::makeFirstCalls(bool isLinkUp)
{
    if (!isLinkUp || m_hasEnded)
        return;
    const QVector<PreparedCall> calls = std::exchange(m_firstCalls, {});
    for (const PreparedCall &prepared : calls)
        call(prepared);
}

void Monitor::takeLine(const QString &line)
{
    const QString text = line.trimmed();
    if (text.isEmpty() || m_hasEnded)
        return;
    if (text == QLatin1String("quit")) {
        end(kSuccess);
    } else if (text == QLatin1String("help")) {
        printCallables();
    } else if (text == QLatin1String("stats")) {
        printStats();
    } else if (const Outcome<PreparedCall> prepared = prepareCall(m_targets, text)) {
        call(*prepared);
    } else {
        complain(prepared.error());
    }
}

void Monitor::call(const PreparedCall &call)
{
    const QVariant result = invoke(call);
    if (result.isValid())
        print(resultLine(m_options.form, m_clock.elapsed(), call.target.name, call.method, result));
}

void Monitor::printCallables()
{
    for (const Target &target : std::as_const(m_targets)) {
        const QVector<Callable> callables = callablesOf(target.object);
        for (const Callable &callable : callables)
            print(callableLine(m_options.form, target.name, callable));
    }
}

void Monitor::printStats()
{
    print(statsText(m_options.form, m_clock.elapsed(), m_protocol->linkHealth()->figures()));
}

void Monitor::print(const QString &line)
{
    if (m_output.writeLine(line) != Output::State::Open && !m_hasEnded)
        end(exitStatus(m_output));
}

void Monitor::reportMissedCalls() const
{
    for (const PreparedCall &missed : m_firstCalls) {
        complain(QStringLiteral("%1.%2 was not called: the link was not up in this time")
                     .arg(missed.target.name, QString::fromLatin1(missed.method.name())));
    }
}

} // namespace canbus::monitor
