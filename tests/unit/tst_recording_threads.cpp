#include "recording/recording.h"

#include <longestwait.h>

#include <QtCore/QTemporaryDir>
#include <QtCore/QThread>
#include <QtTest/QTest>

#include <atomic>
#include <memory>

using canbus::recording::Block;
using canbus::recording::Direction;
using canbus::recording::Recording;
using canbus::recording::Writer;

namespace {

constexpr int kBlocks = 2000;

/// The nth block of a thread: of a length of its own, filled with the thread's letter behind the number.
QByteArray blockOf(char letter, int nth)
{
    return QByteArray::number(nth) + QByteArray(1 + nth % 97, letter);
}

QVector<QByteArray> blocksOf(const Recording &recording, Direction direction)
{
    QVector<QByteArray> blocks;
    for (const Block &block : recording.blocks) {
        if (block.direction == direction)
            blocks.append(block.bytes);
    }
    return blocks;
}

} // namespace

/// The line is received on one thread and written to on another, and both record.
class tst_recording_threads : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void keepsBlocksWholeAndEachThreadsInOrder();
};

void tst_recording_threads::keepsBlocksWholeAndEachThreadsInOrder()
{
    const QTemporaryDir folder;
    const QString path = folder.filePath("both.pcapng");
    Writer writer;
    QVERIFY2(writer.open(path, QString()), qPrintable(writer.error()));
    std::atomic<int> atStart {2};
    const auto writes = [&](Direction direction, char letter) {
        --atStart;
        while (atStart > 0)
            QThread::yieldCurrentThread();
        for (int nth = 0; nth < kBlocks; ++nth)
            writer.write(direction, nth, blockOf(letter, nth));
    };
    const std::unique_ptr<QThread> receiving(QThread::create(writes, Direction::Received, 'r'));
    const std::unique_ptr<QThread> sending(QThread::create(writes, Direction::Sent, 's'));
    receiving->start();
    sending->start();
    QVERIFY(receiving->wait(kLongestWaitMs) && sending->wait(kLongestWaitMs));

    Recording recording;
    QString error;
    QVERIFY2(canbus::recording::read(path, &recording, &error), qPrintable(error));
    QCOMPARE(recording.blocks.size(), 2 * kBlocks);
    const QVector<QByteArray> received = blocksOf(recording, Direction::Received);
    const QVector<QByteArray> sent = blocksOf(recording, Direction::Sent);
    QCOMPARE(received.size(), kBlocks);
    for (int nth = 0; nth < kBlocks; ++nth) {
        QCOMPARE(received.at(nth), blockOf('r', nth));
        QCOMPARE(sent.at(nth), blockOf('s', nth));
    }
}

QTEST_GUILESS_MAIN(tst_recording_threads)
#include "tst_recording_threads.moc"
