#include "boxsim/bench/report.h"
#include "boxsim/bench/session.h"
#include "boxsim/line/line.h"
#include "boxsim/options.h"
#include "boxsim/scenario/scenarioschema.h"
#include "boxsim/setup.h"
#include "boxsim/steering.h"

#include "commandline/linereader.h"
#include "commandline/oneline.h"

#include <QtCore/QCoreApplication>
#include <QtCore/QSocketNotifier>

#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstring>

#include <sys/signalfd.h>
#include <unistd.h>

namespace {

using namespace boxsim;

constexpr int kRunTimeFailure = 1;
constexpr int kWrongArguments = 2;

void complain(const QString &error)
{
    std::fprintf(stderr, "canbus-boxsim: %s\n", canbus::onOneLine(error).toLocal8Bit().constData());
}

int fail(int status, const QString &error)
{
    complain(error);
    return status;
}

bool isPrinted(const QByteArray &text)
{
    return std::fputs(text.constData(), stdout) >= 0 && std::fflush(stdout) == 0;
}

/// The exit status after something could not be printed. When nobody reads any more, the program has nothing
/// left to do.
int statusOfOutput()
{
    const bool isUnread = errno == EPIPE;
    std::clearerr(stdout);
    return isUnread ? 0 : fail(kRunTimeFailure, QStringLiteral("cannot write to standard output"));
}

/// Prints one line at once; ends the program if it cannot.
void print(const QByteArray &line)
{
    if (!isPrinted(line + '\n'))
        QCoreApplication::exit(statusOfOutput());
}

/// Prints what is all that the program was asked for. @return the exit status
int answer(const QByteArray &text)
{
    return isPrinted(text) ? 0 : statusOfOutput();
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

/// Takes one line of standard input.
void takeLine(Session &session, const QString &line, bool json)
{
    const Steered steered = steer(line, session.state());
    if (!steered.error.isEmpty())
        complain(steered.error);
    for (const QString &text : steered.answer)
        print(json ? answerToJson(text) : text.toLocal8Bit());
    if (steered.instruction)
        session.carryOut(*steered.instruction);
}

int run(QCoreApplication &application, const Options &options, int endingSignals)
{
    Setup setup;
    QString error;
    if (!setUp(options, &setup, &error))
        return fail(kWrongArguments, error);
    const std::unique_ptr<Line> line = options.port.isEmpty()
        ? openPty(options.ptyLink, &error)
        : openPort(options.port, options.baudRate, &error);
    if (!line)
        return fail(kRunTimeFailure, error);

    Session session(line.get(), setup.bench, std::move(setup.script));
    QObject::connect(&session, &Session::happened, &application,
                     [&options](const Event &event) { print(options.json ? toJson(event) : toLine(event)); });
    QObject::connect(&session, &Session::ended, &application, [](Ending end, const QString &failure) {
        QCoreApplication::exit(end == Ending::Success ? 0 : fail(kRunTimeFailure, failure));
    });
    QObject::connect(line.get(), &Line::failed, &application,
                     [](const QString &reason) { QCoreApplication::exit(fail(kRunTimeFailure, reason)); });
    QSocketNotifier ending(endingSignals, QSocketNotifier::Read);
    QObject::connect(&ending, &QSocketNotifier::activated, &application, [] { QCoreApplication::quit(); });
    const canbus::LineReader standardInput(
        STDIN_FILENO, [&session, &options](const QString &text) { takeLine(session, text, options.json); },
        complain);
    // From inside the event loop: before it runs, nothing could end it.
    QMetaObject::invokeMethod(
        &application,
        [&options] { print("ready " + canbus::onOneLine(options.ptyLink + options.port).toLocal8Bit()); },
        Qt::QueuedConnection);
    return QCoreApplication::exec();
}

int check(const Options &options)
{
    QString report;
    QString error;
    if (!checkScenario(options, &report, &error))
        return fail(kWrongArguments, error);
    return answer(canbus::onOneLine(report).toLocal8Bit() + '\n');
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
    switch (options.task) {
    case Options::Task::ShowHelp:
        return answer(options.helpText.toLocal8Bit());
    case Options::Task::ShowVersion:
        return answer("canbus-boxsim " CANBUS_VERSION "\n");
    case Options::Task::PrintSchema:
        return answer(scenarioSchema());
    case Options::Task::Check:
        return check(options);
    case Options::Task::Run:
        break;
    }
    if (endingSignals < 0)
        return fail(kRunTimeFailure, QStringLiteral("cannot watch for signals"));
    return run(application, options, endingSignals);
}
