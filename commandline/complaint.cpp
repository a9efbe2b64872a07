#include "complaint.h"

#include "oneline.h"

#include <unistd.h>

namespace canbus {

void writeErrorLine(const QString &line)
{
    const QByteArray bytes = line.toLocal8Bit() + '\n';
    [[maybe_unused]] const auto written =
        ::write(STDERR_FILENO, bytes.constData(), std::size_t(bytes.size()));
}

void complain(const char *command, const QString &text)
{
    writeErrorLine(QLatin1String(command) + QStringLiteral(": ") + onOneLine(text));
}

} // namespace canbus
