#include <logrecorder.h>
#include <playerrig.h>

#include <QtCore/QCoreApplication>
#include <QtTest/QTest>

#include <atomic>
#include <memory>

using namespace canbus;

namespace {

/// What a head unit was like when its application object had gone.
struct End {
    bool wasFinished = false;
    int waitedFor = 0; // blocks that the line took too late, of those that waited when the end came
};

End g_end;

/// The application object goes while many blocks wait for a line that nobody reads.
void endWithBlocksWaiting(int argc, char *argv[])
{
    auto application = std::make_unique<QCoreApplication>(argc, argv);
    const LogRecorder quiet;
    PlayerRig rig;
    rig.start();
    std::atomic<int> late {0};
    rig.letBlocksWait(late);
    const int before = late;
    application.reset();
    g_end.wasFinished = rig.thread()->isFinished();
    g_end.waitedFor = late - before;
}

} // namespace

class CanBusPlayerEndTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void endsThePortsThreadThoughBlocksWait();
};

void CanBusPlayerEndTest::endsThePortsThreadThoughBlocksWait()
{
    // All three hundred would take half a minute.
    QVERIFY2(g_end.waitedFor < 25, qPrintable(QString::number(g_end.waitedFor)));
    QVERIFY(g_end.wasFinished);
}

int main(int argc, char *argv[])
{
    endWithBlocksWaiting(argc, argv);
    QCoreApplication application(argc, argv);
    CanBusPlayerEndTest test;
    return QTest::qExec(&test, argc, argv);
}
#include "tst_canbusplayer_end.moc"
