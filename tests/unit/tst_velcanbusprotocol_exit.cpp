#include "velcanbusprotocol.h"

#include <QtCore/QCoreApplication>
#include <QtCore/QDeadlineTimer>
#include <QtCore/QDir>
#include <QtCore/QFile>
#include <QtCore/QThread>
#include <QtTest/QTest>

using namespace canbus;

namespace {

/// How many parser threads this process has, by the name that the kernel shows.
int parserThreads()
{
    const QDir threads("/proc/self/task");
    int found = 0;
    for (const QString &id : threads.entryList(QDir::Dirs | QDir::NoDotAndDotDot)) {
        QFile name(threads.filePath(id + "/comm"));
        if (name.open(QFile::ReadOnly) && name.readAll().startsWith("CanbusTickThre"))
            ++found;
    }
    return found;
}

/// The number of parser threads, once it is the expected one or ten seconds are over.
int parserThreadsWhenThereAre(int expected)
{
    const QDeadlineTimer end(10000);
    while (parserThreads() != expected && !end.hasExpired())
        QThread::msleep(1);
    return parserThreads();
}

// As a host leaves it behind; volatile, so that it stands where the leak checker finds it.
VelCanBusProtocol *volatile g_protocol = nullptr;

} // namespace

class VelCanBusProtocolExitTest : public QObject {
    Q_OBJECT

public:
    /// Called before the test's own application object is made: another one comes and goes here.
    static void initMain();

private Q_SLOTS:
    void endsTheParserThreadWithTheApplicationObject();

private:
    static int s_running, s_left;
};

int VelCanBusProtocolExitTest::s_running = 0;
int VelCanBusProtocolExitTest::s_left = 0;

void VelCanBusProtocolExitTest::initMain()
{
    static char name[] = "host";
    static char *arguments[] = {name, nullptr};
    static int count = 1;
    {
        const QCoreApplication application(count, arguments);
        g_protocol = new VelCanBusProtocol;
        s_running = parserThreadsWhenThereAre(1);
    }
    s_left = parserThreadsWhenThereAre(0);
}

void VelCanBusProtocolExitTest::endsTheParserThreadWithTheApplicationObject()
{
    QCOMPARE(s_running, 1);
    QCOMPARE(s_left, 0);
}

QTEST_GUILESS_MAIN(VelCanBusProtocolExitTest)
#include "tst_velcanbusprotocol_exit.moc"
