#include "monitor.h"
#include "options.h"
#include "output.h"
#include "playback.h"
#include "standarderror.h"
#include "virtualclock.h"

#include "commandline/arguments.h"
#include "commandline/exitstatus.h"
#include "commandline/stopsignals.h"

#include <QtCore/QCoreApplication>

#include <clocale>
#include <csignal>

#include <fcntl.h>
#include <unistd.h>

namespace monitor = canbus::monitor;

namespace {

/// Whatever is opened first would take the place of a standard descriptor that is closed, and the serial port
/// would then be printed to. Opened for reading only, so that printing fails just as on a closed one.
void holdStandardDescriptors()
{
    int descriptor = 0;
    while (descriptor >= 0 && descriptor <= STDERR_FILENO)
        descriptor = ::open("/dev/null", O_RDONLY);
    if (descriptor > STDERR_FILENO)
        ::close(descriptor);
}

int printAnswer(const QString &text, int stopDescriptor)
{
    monitor::Output output(STDOUT_FILENO, stopDescriptor);
    output.writeLine(text);
    return monitor::exitStatus(output);
}

} // namespace

int main(int argc, char *argv[])
{
    holdStandardDescriptors();
    std::signal(SIGPIPE, SIG_IGN);
    std::signal(SIGXFSZ, SIG_IGN); // a recording that may not grow is an error like a full disk
    const int stopDescriptor = canbus::stopSignals::install({SIGINT, SIGTERM});
    // Read before there is an application object: a recording is read in a time of its own.
    std::setlocale(LC_ALL, "");
    const auto options = monitor::parseOptions(canbus::argumentsOf(argc, argv));
    const bool readsRecording = options && !options->readFile.isEmpty();
    if (readsRecording)
        monitor::VirtualClock::install();
    const QCoreApplication application(argc, argv);
    monitor::standardError::takeLog(options && options->isVerbose);

    if (!options) {
        monitor::standardError::complain(options.error());
        return canbus::kWrongArguments;
    }
    if (options->wantsHelp)
        return printAnswer(monitor::helpText().trimmed(), stopDescriptor);
    if (options->wantsVersion)
        return printAnswer(QStringLiteral("canbus-monitor " CANBUS_VERSION), stopDescriptor);
    if (readsRecording)
        return monitor::Playback(*options, stopDescriptor).run();
    return monitor::Monitor(*options, stopDescriptor).run();
}
