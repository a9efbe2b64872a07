#include "commandline/linereader.h"
#include "commandline/stopsignals.h"
#include "output.h"

#include <longestwait.h>

#include <QtCore/QAbstractEventDispatcher>
#include <QtCore/QEventLoop>
#include <QtCore/QThread>
#include <QtTest/QTest>

#include <csignal>
#include <memory>

#include <fcntl.h>
#include <poll.h>
#include <unistd.h>

using canbus::LineReader;
using canbus::monitor::Output;

namespace {

/// Both ends of a pipe; what is still open is closed at the end.
struct Pipe {
    Pipe()
    {
        if (::pipe2(ends, O_CLOEXEC) != 0)
            qFatal("no pipe is to be had");
    }
    ~Pipe()
    {
        closeReader();
        closeWriter();
    }
    int reader() const { return ends[0]; }
    int writer() const { return ends[1]; }
    void closeReader() { close(ends[0]); }
    void closeWriter() { close(ends[1]); }
    void write(const QByteArray &bytes) const
    {
        if (::write(writer(), bytes.constData(), size_t(bytes.size())) != bytes.size())
            qFatal("the pipe does not take the bytes");
    }
    QByteArray read() const
    {
        char block[65536];
        const ssize_t size = ::read(reader(), block, sizeof block);
        return QByteArray(block, int(size));
    }

private:
    static void close(int &end)
    {
        if (end >= 0)
            ::close(end);
        end = -1;
    }
    int ends[2];
};

bool isReadable(int descriptor)
{
    pollfd polled {descriptor, POLLIN, 0};
    return ::poll(&polled, 1, 0) == 1;
}

/// Whether the event loop finds nothing to do.
bool isIdle()
{
    return !QThread::currentThread()->eventDispatcher()->processEvents(QEventLoop::AllEvents);
}

} // namespace

class tst_monitor_descriptors : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void writesALineAtOnce();
    void writesAVeryLongLineToASlowReader();
    void isDoneWhenNobodyReads();
    void failsWhenTheDeviceIsFull();
    void stopsWhileTheReaderIsSlow();
    void readsLines_data();
    void readsLines();
    void joinsTheBlocksOfALine();
    void passesOverWhatIsNoLine_data();
    void passesOverWhatIsNoLine();
    void theEndOfTheInputEndsTheReading();
    void aSignalMakesTheDescriptorReadable_data();
    void aSignalMakesTheDescriptorReadable();

private:
    void recordLines(int descriptor);

    QStringList m_lines;
    QStringList m_complaints;
    std::unique_ptr<LineReader> m_reader;
};

void tst_monitor_descriptors::initTestCase()
{
    std::signal(SIGPIPE, SIG_IGN); // as in the command
}

void tst_monitor_descriptors::recordLines(int descriptor)
{
    m_lines.clear();
    m_complaints.clear();
    m_reader = std::make_unique<LineReader>(
        descriptor, [this](const QString &line) { m_lines << line; },
        [this](const QString &complaint) { m_complaints << complaint; });
}

void tst_monitor_descriptors::writesALineAtOnce()
{
    const Pipe pipe;
    Output output(pipe.writer(), -1);
    QCOMPARE(output.writeLine(QString::fromUtf8("23 \xc2\xb0"
                                                "C")),
             Output::State::Open);
    QVERIFY(isReadable(pipe.reader()));
    QCOMPARE(pipe.read(),
             QByteArray("23 \xc2\xb0"
                        "C\n"));
}

void tst_monitor_descriptors::writesAVeryLongLineToASlowReader()
{
    const Pipe pipe;
    const QString line(300000, QLatin1Char('x')); // several times what a pipe takes
    Output::State state = Output::State::Failed;
    const std::unique_ptr<QThread> writer(
        QThread::create([&] { state = Output(pipe.writer(), -1).writeLine(line); }));
    writer->start();
    QByteArray received;
    while (received.size() < 300001)
        received += pipe.read();
    QVERIFY(writer->wait(kLongestWaitMs));
    QCOMPARE(state, Output::State::Open);
    QCOMPARE(received, QByteArray(300000, 'x') + '\n');
}

void tst_monitor_descriptors::isDoneWhenNobodyReads()
{
    Pipe pipe;
    Output output(pipe.writer(), -1);
    pipe.closeReader();
    QCOMPARE(output.writeLine(QStringLiteral("lost")), Output::State::ReaderGone);
    QCOMPARE(output.state(), Output::State::ReaderGone);
    QCOMPARE(canbus::monitor::exitStatus(output), 0);
}

void tst_monitor_descriptors::failsWhenTheDeviceIsFull()
{
    const int full = ::open("/dev/full", O_WRONLY | O_CLOEXEC);
    QVERIFY(full >= 0);
    Output output(full, -1);
    QCOMPARE(output.writeLine(QStringLiteral("lost")), Output::State::Failed);
    QCOMPARE(output.error(), QStringLiteral("No space left on device"));
    QCOMPARE(canbus::monitor::exitStatus(output), 1);
    ::close(full);
}

void tst_monitor_descriptors::stopsWhileTheReaderIsSlow()
{
    const Pipe pipe;
    const Pipe stop;
    Output output(pipe.writer(), stop.reader());
    stop.write("x");
    QCOMPARE(output.writeLine(QStringLiteral("there is room for this")), Output::State::Open);
    QCOMPARE(output.writeLine(QString(300000, QLatin1Char('x'))), Output::State::Stopped);
    QCOMPARE(output.writeLine(QStringLiteral("and for nothing any more")), Output::State::Stopped);
    QCOMPARE(canbus::monitor::exitStatus(output), 0);
}

void tst_monitor_descriptors::readsLines_data()
{
    QTest::addColumn<QByteArray>("input");
    QTest::addColumn<QStringList>("lines");

    QTest::newRow("two lines") << QByteArray("climate.acBtn\nquit\n")
                               << QStringList {"climate.acBtn", "quit"};
    QTest::newRow("the last has no end") << QByteArray("help\nquit") << QStringList {"help", "quit"};
    QTest::newRow("empty lines count") << QByteArray("\n\nx\n") << QStringList {"", "", "x"};
    QTest::newRow("a carriage return goes") << QByteArray("help\r\nquit\r") << QStringList {"help", "quit"};
    QTest::newRow("UTF-8") << QByteArray("\xc3\xbc\n") << QStringList {QString(QChar(0xFC))};
    QTest::newRow("nothing") << QByteArray() << QStringList();
}

void tst_monitor_descriptors::readsLines()
{
    QFETCH(QByteArray, input);
    Pipe pipe;
    recordLines(pipe.reader());
    pipe.write(input);
    pipe.closeWriter();
    QTRY_VERIFY_WITH_TIMEOUT(isIdle(), kLongestWaitMs);
    QTEST(m_lines, "lines");
    QCOMPARE(m_complaints, QStringList());
}

void tst_monitor_descriptors::joinsTheBlocksOfALine()
{
    const Pipe pipe;
    recordLines(pipe.reader());
    pipe.write("first\nclim");
    QTRY_COMPARE_WITH_TIMEOUT(m_lines, QStringList {"first"}, kLongestWaitMs);
    pipe.write("ate.acBtn\n");
    QTRY_COMPARE_WITH_TIMEOUT(m_lines, (QStringList {"first", "climate.acBtn"}), kLongestWaitMs);
}

void tst_monitor_descriptors::passesOverWhatIsNoLine_data()
{
    QTest::addColumn<QByteArray>("line");
    QTest::addColumn<QString>("complaint");

    const QString encoding =
        QStringLiteral("a line of standard input is not UTF-8: write it in that encoding");
    const QString length =
        QStringLiteral("a line of standard input has more than 4096 bytes: write it shorter");
    QTest::newRow("another encoding") << QByteArray("note gr\xfc\xdf") << encoding;
    QTest::newRow("half a letter") << QByteArray("note \xc3") << encoding;
    QTest::newRow("a byte too long") << QByteArray(4097, 'x') << length;
    QTest::newRow("far too long") << QByteArray(30000, 'x') << length;
}

void tst_monitor_descriptors::passesOverWhatIsNoLine()
{
    QFETCH(QByteArray, line);
    QFETCH(QString, complaint);
    Pipe pipe;
    recordLines(pipe.reader());
    pipe.write(QByteArray(4096, 'l') + "\r\n" + line + "\nnext\n" + line);
    pipe.closeWriter();
    QTRY_VERIFY_WITH_TIMEOUT(isIdle(), kLongestWaitMs);
    QCOMPARE(m_lines, (QStringList {QString(4096, 'l'), "next"}));
    QCOMPARE(m_complaints, (QStringList {complaint, complaint}));
}

void tst_monitor_descriptors::theEndOfTheInputEndsTheReading()
{
    Pipe pipe;
    recordLines(pipe.reader());
    pipe.write("half a line");
    pipe.closeWriter();
    QTRY_COMPARE_WITH_TIMEOUT(m_lines, QStringList {"half a line"}, kLongestWaitMs);
    // A pipe is readable for ever at its end: watched any longer, it would keep the processor busy.
    QVERIFY(isReadable(pipe.reader()));
    QTRY_VERIFY_WITH_TIMEOUT(isIdle(), kLongestWaitMs);
}

void tst_monitor_descriptors::aSignalMakesTheDescriptorReadable_data()
{
    QTest::addColumn<int>("signal");
    QTest::newRow("Ctrl-C") << SIGINT;
    QTest::newRow("being told to end") << SIGTERM;
}

void tst_monitor_descriptors::aSignalMakesTheDescriptorReadable()
{
    QFETCH(int, signal);
    const int descriptor = canbus::stopSignals::install({signal});
    QVERIFY(descriptor >= 0);
    QVERIFY(!isReadable(descriptor));
    QCOMPARE(std::raise(signal), 0);
    QVERIFY(isReadable(descriptor));
    ::close(descriptor);
}

QTEST_GUILESS_MAIN(tst_monitor_descriptors)
#include "tst_monitor_descriptors.moc"
