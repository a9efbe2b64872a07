#include "canbuslog.h"

#include <sys/syscall.h>
#include <unistd.h>

namespace canbus::logging {

namespace {

qint64 kernelThreadId()
{
    // Asked once for each thread: the call would cost more than the rest of the line. A plain number, so that
    // it outlives every static object that may still log at exit.
    static thread_local const qint64 id = ::syscall(SYS_gettid);
    return id;
}

} // namespace

Line::Line(QtMsgType level, const Origin &origin)
    : m_level(level)
    , m_origin(origin)
{
    m_text.reserve(256);
    m_text += level == QtDebugMsg ? QLatin1String("[DBG] ") : QLatin1String("[ERR] ");
    m_text += QString::number(kernelThreadId());
    m_text += QLatin1Char(' ');
    m_text += QLatin1String(origin.signature);
    m_text += QLatin1Char(' ');
    m_text += QString::number(origin.line);
    m_text += QLatin1String(" --");
}

Line::~Line()
{
    const QMessageLogContext context(m_origin.file, m_origin.line, m_origin.signature, "default");
    qt_message_output(m_level, context, m_text);
}

Line &Line::operator<<(const char *text)
{
    m_text += QLatin1Char(' ');
    m_text += QString::fromUtf8(text);
    return *this;
}

Line &Line::operator<<(bool flag)
{
    return *this << (flag ? "true" : "false");
}

Line &Line::operator<<(int number)
{
    m_text += QLatin1Char(' ');
    m_text += QString::number(number);
    return *this;
}

Line &Line::operator<<(Hex number)
{
    m_text += QLatin1Char(' ');
    m_text += QString::number(number.value, 16);
    return *this;
}

Line &Line::operator<<(const QByteArray &bytes)
{
    static constexpr char kDigits[] = "0123456789abcdef";
    const int size = m_text.size();
    m_text.resize(size + 1 + 2 * bytes.size());
    QChar *digit = m_text.data() + size;
    *digit++ = QLatin1Char(' ');
    for (const char byte : bytes) {
        *digit++ = QLatin1Char(kDigits[quint8(byte) >> 4]);
        *digit++ = QLatin1Char(kDigits[quint8(byte) & 0xF]);
    }
    return *this;
}

Line &Line::operator<<(AsIs raw)
{
    m_text += QLatin1Char(' ');
    QDebug(&m_text).nospace() << raw.bytes;
    return *this;
}

} // namespace canbus::logging
