#include "output.h"

#include "commandline/exitstatus.h"
#include "standarderror.h"

#include <QtCore/qglobal.h>

#include <algorithm>
#include <cerrno>
#include <climits>

#include <poll.h>
#include <unistd.h>

namespace canbus::monitor {

Output::Output(int descriptor, int stopDescriptor)
    : m_descriptor(descriptor)
    , m_stopDescriptor(stopDescriptor)
{
}

Output::State Output::writeLine(const QString &line)
{
    QByteArray bytes = line.toUtf8() + '\n';
    while (m_state == State::Open && !bytes.isEmpty()) {
        if (waitUntilWritable())
            writeSome(bytes);
    }
    return m_state;
}

QString Output::error() const
{
    return qt_error_string(m_errorNumber);
}

bool Output::waitUntilWritable()
{
    pollfd polled[] = {{m_descriptor, POLLOUT, 0}, {m_stopDescriptor, POLLIN, 0}};
    if (::poll(polled, 2, -1) < 0)
        return false; // a signal: asked again
    if (polled[0].revents != 0)
        return true;
    m_state = State::Stopped;
    return false;
}

void Output::writeSome(QByteArray &bytes)
{
    // So much goes into a pipe that is writable without waiting.
    const auto size = std::size_t(std::min(bytes.size(), PIPE_BUF));
    const ssize_t written = ::write(m_descriptor, bytes.constData(), size);
    if (written >= 0) {
        bytes.remove(0, int(written));
    } else if (errno != EINTR && errno != EAGAIN) {
        m_errorNumber = errno;
        m_state = errno == EPIPE || errno == EBADF ? State::ReaderGone : State::Failed;
    }
}

int exitStatus(const Output &output)
{
    if (output.state() != Output::State::Failed)
        return kSuccess;
    standardError::complain(QStringLiteral("cannot write to standard output: %1").arg(output.error()));
    return kFailure;
}

} // namespace canbus::monitor
