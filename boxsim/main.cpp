#include "boxsim/bench/report.h"
#include "boxsim/bench/session.h"
#include "boxsim/line/line.h"
#include "boxsim/options.h"
#include "boxsim/scenario/scenarioschema.h"
#include "boxsim/setup.h"
#include "boxsim/steering.h"

#include "commandline/complaint.h"
#include "commandline/exitstatus.h"
#include "commandline/linereader.h"
#include "commandline/oneline.h"
#include "commandline/stopsignals.h"

#include <QtCore/QCoreApplication>
#include <QtCore/QSocketNotifier>

#include <cerrno>
#include <csignal>
#include <cstdio>

#include <unistd.h>

namespace {

using namespace boxsim;

using canbus::kFailure;
using canbus::kSuccess;
using canbus::kWrongArguments;

void complain(const QString &error)
{
    canbus::complain("canbus-boxsim", error);
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
    return isUnread ? kSuccess : fail(kFailure, QStringLiteral("cannot write to standard output"));
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
    return isPrinted(text) ? kSuccess : statusOfOutput();
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

int run(QCoreApplication &application, const Options &options, int stopDescriptor)
{
    Setup setup;
    QString error;
    if (!setUp(options, &setup, &error))
        return fail(kWrongArguments, error);
    const std::unique_ptr<Line> line = options.port.isEmpty()
        ? openPty(options.ptyLink, &error)
        : openPort(options.port, options.baudRate, &error);
    if (!line)
        return fail(kFailure, error);

    Session session(line.get(), setup.bench, std::move(setup.script));
    QObject::connect(&session, &Session::happened, &application,
                     [&options](const Event &event) { print(options.json ? toJson(event) : toLine(event)); });
    QObject::connect(&session, &Session::ended, &application, [](Ending end, const QString &failure) {
        QCoreApplication::exit(end == Ending::Success ? kSuccess : fail(kFailure, failure));
    });
    QObject::connect(line.get(), &Line::failed, &application,
                     [](const QString &reason) { QCoreApplication::exit(fail(kFailure, reason)); });
    QSocketNotifier stop(stopDescriptor, QSocketNotifier::Read);
    QObject::connect(&stop, &QSocketNotifier::activated, &application, [] { QCoreApplication::quit(); });
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
    std::signal(SIGPIPE, SIG_IGN);
    const int stopDescriptor = canbus::stopSignals::install({SIGINT, SIGTERM, SIGHUP});
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
    if (stopDescriptor < 0)
        return fail(kFailure, QStringLiteral("cannot watch for signals"));
    return run(application, options, stopDescriptor);
}
