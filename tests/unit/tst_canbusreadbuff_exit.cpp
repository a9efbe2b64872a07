#include "velcanbusprotocol.h"

#include <QtTest/QTest>

#include <cstdlib>
#include <sys/wait.h>
#include <unistd.h>

using namespace canbus;

namespace {

CanBusReadBuff *g_held = nullptr;

/// Older than the buffer, and so destroyed after its time: ends the process with 0 when the buffer is still
/// there.
struct Witness {
    ~Witness() { ::_exit(CanBusReadBuff::instance() == g_held ? 0 : 1); }
};

void exitsWhileTheBufferIsHeld()
{
    static const Witness witness;
    g_held = CanBusReadBuff::instance();
    g_held->mutex.lock();
    std::exit(2);
}

} // namespace

class CanBusReadBuffExitTest : public QObject {
    Q_OBJECT

public:
    /// Called before the application object exists: the child process is made while there is but one thread.
    static void initMain();

private Q_SLOTS:
    void givesABufferThatIsHeldToWhoeverStillAsks();

private:
    static int s_status;
};

int CanBusReadBuffExitTest::s_status = -1;

void CanBusReadBuffExitTest::initMain()
{
    const pid_t child = ::fork();
    if (child == 0)
        exitsWhileTheBufferIsHeld();
    ::waitpid(child, &s_status, 0);
}

void CanBusReadBuffExitTest::givesABufferThatIsHeldToWhoeverStillAsks()
{
    QVERIFY(WIFEXITED(s_status));
    QCOMPARE(WEXITSTATUS(s_status), 0);
}

QTEST_GUILESS_MAIN(CanBusReadBuffExitTest)
#include "tst_canbusreadbuff_exit.moc"
