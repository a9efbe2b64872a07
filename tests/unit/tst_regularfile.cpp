#include "commandline/regularfile.h"

#include <QtCore/QFile>
#include <QtCore/QTemporaryDir>
#include <QtTest/QTest>

#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>

using namespace canbus;

namespace {

constexpr qint64 kPlenty = 0x1000000;

QString textOf(int code)
{
    return QString::fromLocal8Bit(std::strerror(code));
}

} // namespace

/// What is read of a file, and why another is not.
class RegularFileTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { QVERIFY(m_folder.isValid()); }

    void readsAFile_data();
    void readsAFile();
    void refusesWhatIsNoRegularFile_data();
    void refusesWhatIsNoRegularFile();
    void refusesASocket();
    void tellsThatReadingHasFailed();
    void forgetsWhatWasReadBefore();

private:
    QString pathOf(const char *name) const { return m_folder.filePath(QString(name)); }

    QTemporaryDir m_folder;
};

void RegularFileTest::readsAFile_data()
{
    QTest::addColumn<QByteArray>("written");
    QTest::addColumn<qint64>("most");
    QTest::addColumn<QByteArray>("read");

    const QByteArray bytes("\x9f\x02\0\n\xff", 5);
    QTest::newRow("any bytes") << bytes << kPlenty << bytes;
    QTest::newRow("nothing") << QByteArray() << kPlenty << QByteArray();
    QTest::newRow("as many bytes as it may be") << bytes << qint64(5) << bytes;
    QTest::newRow("no more bytes than it may be") << bytes << qint64(3) << bytes.left(3);
    QTest::newRow("no bytes at all") << bytes << qint64(0) << QByteArray();
    const QByteArray large = QByteArray(0x100000, 'a') + QByteArray(0x100000, 'b') + "c";
    QTest::newRow("more than is read at once") << large << kPlenty << large;
    QTest::newRow("no more of it than it may be") << large << qint64(0x100001) << large.left(0x100001);
}

void RegularFileTest::readsAFile()
{
    QFETCH(QByteArray, written);
    QFETCH(qint64, most);
    QFETCH(QByteArray, read);

    QFile file(pathOf("file"));
    QVERIFY(file.open(QFile::WriteOnly | QFile::Truncate));
    QCOMPARE(file.write(written), written.size());
    file.close();
    QByteArray content;
    QString reason = "not yet";
    QVERIFY(readRegularFile(file.fileName(), most, &content, &reason));
    QCOMPARE(reason, QString());
    QVERIFY(content == read);
}

void RegularFileTest::refusesWhatIsNoRegularFile_data()
{
    QTest::addColumn<QString>("path");
    QTest::addColumn<QString>("reason");

    QTest::newRow("a file that is not there") << pathOf("missing") << textOf(ENOENT);
    QTest::newRow("a file in what is no folder") << "/dev/null/file" << textOf(ENOTDIR);
    QTest::newRow("a folder") << m_folder.path() << "it is a folder";
    QTest::newRow("a device") << "/dev/zero"
                              << "it is no regular file";
    QCOMPARE(::mkfifo(QFile::encodeName(pathOf("pipe")).constData(), 0600), 0);
    QTest::newRow("a pipe that nobody writes to") << pathOf("pipe") << "it is no regular file";
}

void RegularFileTest::refusesWhatIsNoRegularFile()
{
    QFETCH(QString, path);
    QByteArray content;
    QString why;
    QVERIFY(!readRegularFile(path, kPlenty, &content, &why));
    QTEST(why, "reason");
    QCOMPARE(content, QByteArray());
}

void RegularFileTest::refusesASocket()
{
    const QByteArray path = QFile::encodeName(pathOf("socket"));
    sockaddr_un address {};
    address.sun_family = AF_UNIX;
    QVERIFY(size_t(path.size()) < sizeof address.sun_path);
    std::memcpy(address.sun_path, path.constData(), size_t(path.size()));
    const int socket = ::socket(AF_UNIX, SOCK_STREAM, 0);
    QCOMPARE(::bind(socket, reinterpret_cast<const sockaddr *>(&address), sizeof address), 0);
    QByteArray content;
    QString reason;
    QVERIFY(!readRegularFile(pathOf("socket"), kPlenty, &content, &reason));
    QCOMPARE(reason, textOf(ENXIO));
    ::close(socket);
}

void RegularFileTest::tellsThatReadingHasFailed()
{
    // A regular file to the system, and unreadable at its beginning: no process has memory there.
    QByteArray content;
    QString reason;
    QVERIFY(!readRegularFile("/proc/self/mem", kPlenty, &content, &reason));
    QCOMPARE(reason, textOf(EIO));
    QCOMPARE(content, QByteArray());
}

void RegularFileTest::forgetsWhatWasReadBefore()
{
    QByteArray content = "old";
    QString reason;
    QVERIFY(!readRegularFile(pathOf("missing"), kPlenty, &content, &reason));
    QCOMPARE(content, QByteArray());
}

QTEST_GUILESS_MAIN(RegularFileTest)
#include "tst_regularfile.moc"
