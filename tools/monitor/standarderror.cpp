#include "standarderror.h"

#include "commandline/oneline.h"

#include <QtCore/QByteArray>
#include <QtCore/QLoggingCategory>
#include <QtCore/QVariant>

#include <unistd.h>

namespace canbus::monitor::standardError {

namespace {

void writeLine(const QString &text)
{
    // In one piece, because several threads write. There is nobody to be told when it fails.
    const QByteArray line = text.toLocal8Bit() + '\n';
    [[maybe_unused]] const auto written = ::write(STDERR_FILENO, line.constData(), std::size_t(line.size()));
}

void writeMessage(QtMsgType, const QMessageLogContext &, const QString &message)
{
    writeLine(message);
}

} // namespace

void complain(const QString &text)
{
    writeLine(QStringLiteral("canbus-monitor: ") + onOneLine(text));
}

void takeLog(bool isVerbose)
{
    qInstallMessageHandler(writeMessage);
    const QString shown = QVariant(isVerbose).toString();
    QLoggingCategory::setFilterRules(QStringLiteral("default.critical=%1\ndefault.debug=%1").arg(shown));
}

} // namespace canbus::monitor::standardError
