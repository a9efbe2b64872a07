#include "benchbytes.h"
#include "benchcase.h"
#include "velcanbusprotocol.h"

#include <memory>

namespace bench {

namespace {

void ignoreLine(QtMsgType, const QMessageLogContext &, const QString &)
{
}

void switchDebug(const char *rule)
{
    QLoggingCategory::setFilterRules(QLatin1String(rule));
}

} // namespace

std::vector<Case> loggingCases()
{
    const auto frame = std::make_shared<canbus::FrameDataFormat>();
    frame->id = bytes("21");
    frame->TP = bytes("03");
    frame->MOD = bytes("02");
    frame->DATA = plainBytes(15);
    frame->CS = 0x20;
    const auto write = [frame] { frame->LogFrameData(); };
    return {
        {"log line/off", [] { switchDebug("*.debug=false"); }, write},
        {"log line/on, empty handler",
         [] {
             qInstallMessageHandler(ignoreLine);
             switchDebug("*.debug=true");
         },
         write},
        {"log line/off again", [] { switchDebug("*.debug=false"); }, write},
    };
}

} // namespace bench
