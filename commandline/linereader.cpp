#include "linereader.h"

#include <QtCore/QTextCodec>

#include <cerrno>
#include <utility>

#include <unistd.h>

namespace canbus {

namespace {

/// @return whether the bytes are UTF-8
bool decode(const QByteArray &bytes, QString *text)
{
    QTextCodec::ConverterState state;
    *text = QTextCodec::codecForName("UTF-8")->toUnicode(bytes.constData(), bytes.size(), &state);
    return state.invalidChars == 0 && state.remainingChars == 0;
}

} // namespace

LineReader::LineReader(int descriptor, Listener listener, Listener complaints)
    : m_descriptor(descriptor)
    , m_listener(std::move(listener))
    , m_complaints(std::move(complaints))
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
        const QByteArray line = m_pending.left(at);
        m_pending.remove(0, at + 1);
        endLine(line);
    }
    // No more than the beginning of a long line is kept, which tells that it is one.
    m_pending.truncate(kMostBytes + 2);
}

void LineReader::endLine(QByteArray line)
{
    if (line.endsWith('\r'))
        line.chop(1);
    QString text;
    if (line.size() > kMostBytes)
        m_complaints(QStringLiteral("a line of standard input has more than %1 bytes: write it shorter")
                         .arg(kMostBytes));
    else if (decode(line, &text))
        m_listener(text);
    else
        m_complaints(QStringLiteral("a line of standard input is not UTF-8: write it in that encoding"));
}

void LineReader::end()
{
    m_notifier.setEnabled(false);
    if (!m_pending.isEmpty())
        endLine(std::exchange(m_pending, {}));
}

} // namespace canbus
