#include "boxsim/line.h"
#include "boxsim/options.h"
#include "boxsim/report.h"
#include "boxsim/session.h"

#include <QtCore/QCoreApplication>
#include <QtCore/QSocketNotifier>

#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstring>

#include <sys/signalfd.h>

namespace {

using namespace boxsim;

constexpr int kRunTimeFailure = 1;
constexpr int kWrongArguments = 2;

int fail(int status, const QString &error)
{
    std::fprintf(stderr, "canbus-boxsim: %s\n", error.toLocal8Bit().constData());
    return status;
}

/// Prints one line at once. When nobody reads any more, the program has nothing left to do and ends.
void print(const QByteArray &line)
{
    if (std::printf("%s\n", line.constData()) >= 0 && std::fflush(stdout) == 0)
        return;
    const int status =
        errno == EPIPE ? 0 : fail(kRunTimeFailure, QStringLiteral("cannot write to standard output"));
    std::clearerr(stdout);
    QCoreApplication::exit(status);
}

/// Turns the signals that end a program into a readable descriptor. @return the descriptor, or -1
int openEndingSignals()
{
    sigset_t ending;
    sigemptyset(&ending);
    for (const int signal : {SIGINT, SIGTERM, SIGHUP})
        sigaddset(&ending, signal);
    std::signal(SIGPIPE, SIG_IGN);
    sigprocmask(SIG_BLOCK, &ending, nullptr);
    return signalfd(-1, &ending, SFD_CLOEXEC | SFD_NONBLOCK);
}

int run(QCoreApplication &application, const Options &options, int endingSignals)
{
    QString error;
    const std::unique_ptr<Line> line = options.port.isEmpty()
        ? openPty(options.ptyLink, &error)
        : openPort(options.port, options.baudRate, &error);
    if (!line)
        return fail(kRunTimeFailure, error);

    BenchOptions bench;
    bench.faults = options.faults;
    bench.silentAfterMs = options.silentAfterMs;
    bench.faults.split = options.split;
    Session session(line.get(), bench);
    QObject::connect(&session, &Session::happened, &application,
                     [&options](const Event &event) { print(options.json ? toJson(event) : toLine(event)); });
    QObject::connect(line.get(), &Line::failed, &application,
                     [](const QString &reason) { QCoreApplication::exit(fail(kRunTimeFailure, reason)); });
    QSocketNotifier ending(endingSignals, QSocketNotifier::Read);
    QObject::connect(&ending, &QSocketNotifier::activated, &application, [] { QCoreApplication::quit(); });
    // From inside the event loop: before it runs, nothing could end it.
    QMetaObject::invokeMethod(
        &application, [&options] { print("ready " + (options.ptyLink + options.port).toLocal8Bit()); },
        Qt::QueuedConnection);
    return QCoreApplication::exec();
}

} // namespace

int main(int argc, char *argv[])
{
    const int endingSignals = openEndingSignals();
    QCoreApplication application(argc, argv);
    QCoreApplication::setApplicationName(QStringLiteral("canbus-boxsim"));
    Options options;
    QString error;
    if (!parseOptions(QCoreApplication::arguments(), &options, &error))
        return fail(kWrongArguments, error);
    if (options.task == Options::Task::ShowHelp)
        return std::fputs(options.helpText.toLocal8Bit().constData(), stdout) < 0 ? kRunTimeFailure : 0;
    if (options.task == Options::Task::ShowVersion)
        return std::puts("canbus-boxsim " CANBUS_VERSION) < 0 ? kRunTimeFailure : 0;
    if (endingSignals < 0)
        return fail(kRunTimeFailure, QStringLiteral("cannot watch for signals"));
    return run(application, options, endingSignals);
}
