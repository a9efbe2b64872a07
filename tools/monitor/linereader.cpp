#include "linereader.h"

#include <cerrno>
#include <utility>

#include <unistd.h>

namespace canbus::monitor {

namespace {

QString lineText(QByteArray line)
{
    if (line.endsWith('\r'))
        line.chop(1);
    return QString::fromUtf8(line);
}

} // namespace

LineReader::LineReader(int descriptor, Listener listener)
    : m_descriptor(descriptor)
    , m_listener(std::move(listener))
    , m_notifier(descriptor, QSocketNotifier::Read)
{
    connect(&m_notifier, &QSocketNotifier::activated, this, &LineReader::readSome);
}

void LineReader::readSome()
{
    char block[4096];
    const ssize_t size = ::read(m_descriptor, block, sizeof block);
    if (size > 0) {
        m_pending.append(block, int(size));
        handOnLines();
    } else if (size == 0 || (errno != EINTR && errno != EAGAIN)) {
        end();
    }
}

void LineReader::handOnLines()
{
    for (int at = m_pending.indexOf('\n'); at >= 0; at = m_pending.indexOf('\n')) {
        const QString line = lineText(m_pending.left(at));
        m_pending.remove(0, at + 1);
        m_listener(line);
    }
}

void LineReader::end()
{
    m_notifier.setEnabled(false);
    if (!m_pending.isEmpty())
        m_listener(lineText(std::exchange(m_pending, {})));
}

} // namespace canbus::monitor
