#include "pcapngbytes.h"
#include "recording/recording.h"

#include <contentof.h>

#include <QtCore/QFile>
#include <QtCore/QFileInfo>
#include <QtCore/QTemporaryDir>
#include <QtTest/QTest>

#include <csignal>

#include <fcntl.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

using canbus::recording::Block;
using canbus::recording::Direction;
using canbus::recording::Head;
using canbus::recording::Recording;
using canbus::recording::Writer;

namespace {

QString makeFile(const QTemporaryDir &folder, const QByteArray &content)
{
    QFile file(folder.filePath("there"));
    if (!file.open(QIODevice::WriteOnly) || file.write(content) != content.size())
        qFatal("the file cannot be made");
    return file.fileName();
}

QString makePipe(const QTemporaryDir &folder)
{
    const QString path = folder.filePath("pipe");
    if (::mkfifo(qPrintable(path), 0600) != 0)
        qFatal("the pipe cannot be made");
    return path;
}

/// As long as it lives, no file of the process grows beyond this: a full disk, as far as a writer can tell.
class FileSizeLimit {
public:
    explicit FileSizeLimit(qint64 size)
    {
        m_handler = std::signal(SIGXFSZ, SIG_IGN);
        ::getrlimit(RLIMIT_FSIZE, &m_before);
        rlimit limit = m_before;
        limit.rlim_cur = rlim_t(size);
        ::setrlimit(RLIMIT_FSIZE, &limit);
    }
    ~FileSizeLimit()
    {
        ::setrlimit(RLIMIT_FSIZE, &m_before);
        std::signal(SIGXFSZ, m_handler);
    }

private:
    rlimit m_before = {};
    void (*m_handler)(int) = nullptr;
};

} // namespace

class tst_recording : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void writesThePublishedFormatByteForByte();
    void leavesOutWhatIsNotKnownAboutTheRecording();
    void readsWhatIsWritten();
    void keepsAFileThatIsThereAndNotEmpty();
    void fillsAFileThatIsThereAndEmpty();
    void saysWhyAFileCannotBeMade();
    void takesTheHalfBlockBackWhenTheDiskIsFull();
    void writesNothingMoreAfterAFailure();
    void leavesNoFileWhoseHeadDoesNotFit();
    void discardTakesAwayTheFileThatItHasMade();
    void discardKeepsAFileThatIsNotItsOwn();
    void saysWhyAFileCannotBeRead();
    void namesTheFileInItsErrors();
    void readsNoPipe();
    void writesIntoNoPipe();
    void writesIntoACharacterDevice();
    void namesAFileWithALineBreakOnOneLine();
};

void tst_recording::writesThePublishedFormatByteForByte()
{
    const QTemporaryDir folder;
    const QString path = folder.filePath("drive.pcapng");
    Writer writer;
    QVERIFY2(writer.open(path, Head {"on then", "canbus-monitor 1.0.0", "/dev/ttyS3"}),
             qPrintable(writer.error()));
    QVERIFY(writer.write(Direction::Received, 1700000000000000, bytes("9f02 2101 0100 01 20 9f03")));
    QVERIFY(writer.write(Direction::Sent, 1700000000000010, bytes("9f06 2121 9f03")));
    QFile file(path);
    QVERIFY(file.open(QIODevice::ReadOnly)); // while it is still being written
    QCOMPARE(file.readAll().toHex(), joined({kSection, kInterface, kReceived, kSent}).toHex());
    QCOMPARE(writer.error(), QString());
}

void tst_recording::leavesOutWhatIsNotKnownAboutTheRecording()
{
    const QTemporaryDir folder;
    const QString path = folder.filePath("bare.pcapng");
    Writer writer;
    QVERIFY(writer.open(path, Head()));
    QFile file(path);
    QVERIFY(file.open(QIODevice::ReadOnly));
    QCOMPARE(file.readAll().toHex(),
             bytes("0a0d0d0a 1c000000 4d3c2b1a 0100 0000 ffffffffffffffff 1c000000"
                   "01000000 20000000 9300 0000 00000000 0900 0100 06 000000 0000 0000 20000000")
                 .toHex());
}

void tst_recording::readsWhatIsWritten()
{
    const QTemporaryDir folder;
    const QString path = folder.filePath("drive.pcapng");
    Writer writer;
    QVERIFY(writer.open(path, QStringLiteral("tür zu")));
    QVERIFY(writer.write(Direction::Received, 1700000000000000, QByteArray(5000, '\x9f')));
    QVERIFY(writer.write(Direction::Sent, 1700000000000001, QByteArray()));
    Recording recording;
    QString error;
    QVERIFY2(canbus::recording::read(path, &recording, &error), qPrintable(error));
    QCOMPARE(error, QString());
    QCOMPARE(recording.comment, QStringLiteral("tür zu"));
    QCOMPARE(recording.blocks.size(), 2);
    QCOMPARE(recording.blocks[0].direction, Direction::Received);
    QCOMPARE(recording.blocks[0].timeUs, 1700000000000000);
    QCOMPARE(recording.blocks[0].bytes, QByteArray(5000, '\x9f'));
    QCOMPARE(recording.blocks[1].direction, Direction::Sent);
    QCOMPARE(recording.blocks[1].timeUs, 1700000000000001);
    QCOMPARE(recording.blocks[1].bytes, QByteArray());
}

void tst_recording::keepsAFileThatIsThereAndNotEmpty()
{
    const QTemporaryDir folder;
    const QString path = makeFile(folder, "notes");
    Writer writer;
    QVERIFY(!writer.open(path, QString()));
    QCOMPARE(writer.error(), path + ": there and not empty: name a new file");
    QVERIFY(!writer.write(Direction::Sent, 0, "x"));
    QCOMPARE(contentOf(path), QByteArray("notes"));
}

void tst_recording::fillsAFileThatIsThereAndEmpty()
{
    const QTemporaryDir folder;
    const QString path = makeFile(folder, "");
    Writer writer;
    QVERIFY2(writer.open(path, QString()), qPrintable(writer.error()));
    QVERIFY(contentOf(path).startsWith("\n\r\r\n"));
}

void tst_recording::saysWhyAFileCannotBeMade()
{
    Writer writer;
    QVERIFY(!writer.open(QStringLiteral("/there/is/no/such/folder"), QString()));
    QCOMPARE(writer.error(),
             QStringLiteral("/there/is/no/such/folder: cannot be written: No such file or directory"));
    QVERIFY(!writer.open(QStringLiteral("/tmp"), QString()));
    QCOMPARE(writer.error(), QStringLiteral("/tmp: cannot be written: Is a directory"));
}

void tst_recording::takesTheHalfBlockBackWhenTheDiskIsFull()
{
    const QTemporaryDir folder;
    const QString path = folder.filePath("full.pcapng");
    Writer writer;
    QVERIFY(writer.open(path, QString()));
    QVERIFY(writer.write(Direction::Received, 1, "kept"));
    const qint64 whole = QFileInfo(path).size();
    {
        const FileSizeLimit limit(whole + 20);
        QVERIFY(!writer.write(Direction::Received, 2, "this does not fit into what is left"));
    }
    QCOMPARE(writer.error(), path + ": cannot be written any further: there is no more room");
    QCOMPARE(QFileInfo(path).size(), whole);
    Recording recording;
    QString error;
    QVERIFY2(canbus::recording::read(path, &recording, &error), qPrintable(error));
    QCOMPARE(recording.blocks.size(), 1);
    QCOMPARE(recording.blocks[0].bytes, QByteArray("kept"));
}

void tst_recording::writesNothingMoreAfterAFailure()
{
    const QTemporaryDir folder;
    const QString path = folder.filePath("full.pcapng");
    Writer writer;
    QVERIFY(writer.open(path, QString()));
    const qint64 whole = QFileInfo(path).size();
    {
        const FileSizeLimit limit(whole);
        QVERIFY(!writer.write(Direction::Received, 2, "no room"));
    }
    const QString error = writer.error();
    QCOMPARE(error, path + ": cannot be written any further: File too large");
    QVERIFY(!writer.write(Direction::Received, 3, "there is room again"));
    QCOMPARE(writer.error(), error);
    QCOMPARE(QFileInfo(path).size(), whole);
}

void tst_recording::leavesNoFileWhoseHeadDoesNotFit()
{
    const QTemporaryDir folder;
    const QString path = folder.filePath("full.pcapng");
    Writer writer;
    {
        const FileSizeLimit limit(10);
        QVERIFY(!writer.open(path, QString()));
    }
    QCOMPARE(writer.error(), path + ": cannot be written any further: there is no more room");
    QVERIFY(!QFileInfo::exists(path));
}

void tst_recording::discardTakesAwayTheFileThatItHasMade()
{
    const QTemporaryDir folder;
    const QString fresh = folder.filePath("fresh.pcapng");
    Writer writer;
    QVERIFY(writer.open(fresh, QString()));
    writer.discard();
    QVERIFY(!QFileInfo::exists(fresh));
    const QString old = makeFile(folder, "");
    QVERIFY(writer.open(old, QString()));
    writer.discard();
    QVERIFY(QFileInfo::exists(old));
    QCOMPARE(contentOf(old), QByteArray());
}

void tst_recording::discardKeepsAFileThatIsNotItsOwn()
{
    const QTemporaryDir folder;
    const QString path = makeFile(folder, "notes");
    Writer writer;
    QVERIFY(!writer.open(path, QString()));
    writer.discard();
    QCOMPARE(contentOf(path), QByteArray("notes"));
}

void tst_recording::saysWhyAFileCannotBeRead()
{
    Recording recording;
    QString error;
    QVERIFY(!canbus::recording::read(QStringLiteral("/there/is/no/such.pcapng"), &recording, &error));
    QCOMPARE(error, QStringLiteral("/there/is/no/such.pcapng: cannot be read: No such file or directory"));
    QVERIFY(!canbus::recording::read(QStringLiteral("/tmp"), &recording, &error));
    QCOMPARE(error, QStringLiteral("/tmp: cannot be read: it is a folder"));
}

void tst_recording::namesTheFileInItsErrors()
{
    const QTemporaryDir folder;
    const QString path = makeFile(folder, "notes");
    Recording recording;
    recording.blocks.append(Block());
    QString error;
    QVERIFY(!canbus::recording::read(path, &recording, &error));
    QCOMPARE(error, path + ": no pcapng file");
    QCOMPARE(recording.blocks.size(), 0);
}

void tst_recording::readsNoPipe()
{
    const QTemporaryDir folder;
    const QString path = makePipe(folder);
    Recording recording;
    QString error;
    QVERIFY(!canbus::recording::read(path, &recording, &error));
    QCOMPARE(error, path + ": cannot be read: it is no regular file");
}

void tst_recording::writesIntoNoPipe()
{
    const QTemporaryDir folder;
    const QString path = makePipe(folder);
    Writer writer;
    QVERIFY(!writer.open(path, QString()));
    QCOMPARE(writer.error(), path + ": no regular file: name a new one");
    const int reader = ::open(qPrintable(path), O_RDONLY | O_NONBLOCK);
    QVERIFY(reader >= 0);
    QVERIFY(!writer.open(path, QString()));
    QCOMPARE(writer.error(), path + ": no regular file: name a new one");
    char byte = 0;
    QCOMPARE(::read(reader, &byte, 1), ssize_t(0));
    ::close(reader);
}

void tst_recording::writesIntoACharacterDevice()
{
    Writer writer;
    QVERIFY2(writer.open("/dev/null", QString()), qPrintable(writer.error()));
    QVERIFY(!writer.open("/dev/full", QString()));
    QCOMPARE(writer.error(),
             QStringLiteral("/dev/full: cannot be written any further: No space left on device"));
}

void tst_recording::namesAFileWithALineBreakOnOneLine()
{
    const QTemporaryDir folder;
    Recording recording;
    QString error;
    QVERIFY(!canbus::recording::read(folder.filePath("two\nlines"), &recording, &error));
    QCOMPARE(error, folder.filePath("two\\nlines: cannot be read: No such file or directory"));
    Writer writer;
    QVERIFY(!writer.open(folder.filePath("no\nfolder/new"), QString()));
    QCOMPARE(writer.error(),
             folder.filePath("no\\nfolder/new: cannot be written: No such file or directory"));
}

QTEST_GUILESS_MAIN(tst_recording)
#include "tst_recording.moc"
