#include "exitstatus.h"
#include "monitor.h"
#include "options.h"
#include "output.h"
#include "standarderror.h"
#include "stopsignals.h"

#include <QtCore/QCoreApplication>

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
    const int stopDescriptor = monitor::stopSignals::install();
    const QCoreApplication application(argc, argv);
    monitor::standardError::takeLog();

    const auto options = monitor::parseOptions(QCoreApplication::arguments());
    if (!options) {
        monitor::standardError::complain(options.error());
        return monitor::kWrongArguments;
    }
    if (options->wantsHelp)
        return printAnswer(monitor::helpText().trimmed(), stopDescriptor);
    if (options->wantsVersion)
        return printAnswer(QStringLiteral("canbus-monitor " CANBUS_MONITOR_VERSION), stopDescriptor);
    return monitor::Monitor(*options, stopDescriptor).run();
}
