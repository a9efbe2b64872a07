#include "farend.h"

#include "cases/benchbytes.h"
#include "frameformat.h"
#include "wakeups.h"

#include <cstdlib>

#include <fcntl.h>
#include <poll.h>
#include <termios.h>
#include <unistd.h>

namespace bench {

namespace {

constexpr int kPollMs = 50;
constexpr int kLongestWaitMs = 2000;

int openedMaster()
{
    const int master = ::posix_openpt(O_RDWR | O_NOCTTY | O_CLOEXEC);
    if (master < 0 || ::grantpt(master) != 0 || ::unlockpt(master) != 0)
        giveUp("no pseudo-terminal is to be had");
    termios raw {};
    ::tcgetattr(master, &raw);
    ::cfmakeraw(&raw);
    ::tcsetattr(master, TCSANOW, &raw);
    return master;
}

} // namespace

FarEnd::FarEnd()
    : m_master(openedMaster())
    , m_name(::ptsname(m_master))
    , m_thread([this] { listen(); })
{
}

FarEnd::~FarEnd()
{
    m_ends = true;
    m_thread.join();
    ::close(m_master);
}

Clock::time_point FarEnd::waitForTheFirst()
{
    if (!m_heard.tryAcquire(1, kLongestWaitMs))
        giveUp("nothing has come out of the line");
    return m_heardAt;
}

void FarEnd::send(const QByteArray &data) const
{
    if (::write(m_master, data.constData(), size_t(data.size())) != data.size())
        giveUp("the line takes nothing");
}

void FarEnd::listen()
{
    m_number = threadNumber();
    char block[4096];
    while (!m_ends) {
        pollfd line {m_master, POLLIN, 0};
        if (::poll(&line, 1, kPollMs) <= 0 || (line.revents & POLLIN) == 0)
            continue;
        const Clock::time_point now = Clock::now();
        const ssize_t size = ::read(m_master, block, sizeof block);
        if (size <= 0)
            continue;
        if (m_isArmed) {
            m_heardAt = now;
            m_isArmed = false;
            m_heard.release();
        }
        m_received.append(block, int(size));
        answerAll();
    }
}

void FarEnd::answerAll()
{
    const QByteArray end = bytes("9f 03");
    for (int at = m_received.indexOf(end); at != -1; at = m_received.indexOf(end)) {
        answer(m_received.left(at));
        m_received.remove(0, at + end.size());
    }
}

void FarEnd::answer(const QByteArray &frame) const
{
    const int begin = frame.indexOf(bytes("9f 02"));
    if (begin == -1 || begin + 3 >= frame.size())
        return;
    const QByteArray id = frame.mid(begin + 2, 1);
    send(canbus::frame::buildAnswer(canbus::frame::kAck, id));
    const bool wantsToConnect = frame.mid(begin + 3) == bytes("01 00 00 00 20");
    if (wantsToConnect)
        send(bytes("9f 02 41 01 00 00 01 41 9f 03"));
}

} // namespace bench
