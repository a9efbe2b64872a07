#include "standarderror.h"

#include "commandline/complaint.h"

#include <QtCore/QLoggingCategory>
#include <QtCore/QVariant>

namespace canbus::monitor::standardError {

namespace {

void writeMessage(QtMsgType, const QMessageLogContext &, const QString &message)
{
    writeErrorLine(message);
}

} // namespace

void complain(const QString &text)
{
    canbus::complain("canbus-monitor", text);
}

void takeLog(bool isVerbose)
{
    qInstallMessageHandler(writeMessage);
    const QString shown = QVariant(isVerbose).toString();
    QLoggingCategory::setFilterRules(QStringLiteral("default.critical=%1\ndefault.debug=%1").arg(shown));
}

} // namespace canbus::monitor::standardError
