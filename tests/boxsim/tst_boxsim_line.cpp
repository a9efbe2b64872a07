#include "hexbytes.h"
#include "linetest.h"
#include "longestwait.h"
#include "plaindevice.h"
#include "runnable.h"

#include <QtCore/QCoreApplication>
#include <QtCore/QDir>
#include <QtCore/QFile>
#include <QtCore/QFileInfo>
#include <QtTest/QSignalSpy>
#include <QtTest/QTest>

#include <fcntl.h>
#include <poll.h>
#include <sys/ioctl.h>
#include <unistd.h>

using boxsim::Line;

namespace {

QByteArray everyByte()
{
    QByteArray all;
    for (int byte = 0; byte < 256; ++byte)
        all.append(char(byte));
    return all;
}

} // namespace

class TestBoxsimLine : public LineTest {
    Q_OBJECT

private Q_SLOTS:
    void init() { makeFolder(); }
    void linksToAPseudoTerminal();
    void passesEveryByteBothWays();
    void outlivesHeadUnitsThatComeAndGo();
    void letsTheNextHeadUnitIn();
    void losesWhatNobodyReads();
    void replacesALinkThatLeadsNowhere();
    void replacesALinkToAPseudoTerminal();
    void leavesOtherFilesAlone_data();
    void leavesOtherFilesAlone();
    void leavesALinkAloneThatIsNotItsOwnAnyMore();
    void saysWhyTheLinkCannotBeMade();
    void saysWhyAPortCannotBeOpened();
    void talksOverAnyDeviceAsAPort();
    void saysOnceThatThePortIsGone();
};

void TestBoxsimLine::linksToAPseudoTerminal()
{
    std::unique_ptr<Line> line = open();
    QVERIFY(line);

    QVERIFY(QFile::symLinkTarget(m_link).startsWith("/dev/pts/"));
    QCOMPARE(QDir(m_folder->path()).entryList(QDir::AllEntries | QDir::System | QDir::NoDotAndDotDot),
             QStringList {"box"});
    line.reset();
    QVERIFY(!QFileInfo(m_link).isSymLink());
}

void TestBoxsimLine::passesEveryByteBothWays()
{
    const std::unique_ptr<Line> line = open();
    QVERIFY(line);
    QByteArray arrived;
    connect(line.get(), &Line::received, this, [&arrived](const QByteArray &bytes) { arrived += bytes; });
    Device device(m_link);
    QVERIFY(device.isOpen());

    QVERIFY(device.write(everyByte()));
    QTRY_COMPARE_WITH_TIMEOUT(arrived, everyByte(), 30000);
    line->write(everyByte());
    QTRY_COMPARE_WITH_TIMEOUT(device.received(), everyByte(), 30000);
}

void TestBoxsimLine::outlivesHeadUnitsThatComeAndGo()
{
    const std::unique_ptr<Line> line = open();
    QVERIFY(line);
    QByteArray arrived;
    QSignalSpy failed(line.get(), &Line::failed);
    connect(line.get(), &Line::received, this, [&arrived](const QByteArray &bytes) { arrived += bytes; });

    for (int i = 1; i <= 3; ++i) {
        Device device(m_link);
        QVERIFY(device.write(bytes("9f 06")));
        QTRY_COMPARE_WITH_TIMEOUT(arrived.size(), 2 * i, 30000);
    }
    QCOMPARE(failed.size(), 0);
}

void TestBoxsimLine::letsTheNextHeadUnitIn()
{
    const auto line = open();
    QVERIFY(line);
    const int headUnit = ::open(m_link.toLocal8Bit().constData(), O_RDWR | O_NOCTTY);
    QVERIFY(headUnit >= 0);
    // As a head unit does, which never takes it back.
    QCOMPARE(::ioctl(headUnit, TIOCEXCL), 0);
    int known = 0;
    if (isEmulated() && ::ioctl(headUnit, TIOCGEXCL, &known) != 0)
        QSKIP("the emulator cannot tell whether a line is exclusive");
    const auto isExclusive = [headUnit] {
        int exclusive = -1;
        return ::ioctl(headUnit, TIOCGEXCL, &exclusive) != 0 || exclusive != 0;
    };
    QTRY_VERIFY_WITH_TIMEOUT(!isExclusive(), kLongestWaitMs);
    ::close(headUnit);
}

void TestBoxsimLine::losesWhatNobodyReads()
{
    const std::unique_ptr<Line> line = open();
    QVERIFY(line);

    for (int i = 0; i < 100; ++i)
        line->write(QByteArray(4096, 'x'));

    Device device(m_link);
    QTRY_VERIFY_WITH_TIMEOUT(!device.received().isEmpty(), 30000);
    QVERIFY(device.received().size() < 100 * 4096);
}

void TestBoxsimLine::replacesALinkThatLeadsNowhere()
{
    QVERIFY(QFile::link(m_folder->filePath("gone"), m_link));

    const std::unique_ptr<Line> line = open();
    QVERIFY(line);
    QVERIFY(QFile::symLinkTarget(m_link).startsWith("/dev/pts/"));
}

void TestBoxsimLine::replacesALinkToAPseudoTerminal()
{
    const std::unique_ptr<Line> first = open();
    QVERIFY(first);
    const QString firstTarget = QFile::symLinkTarget(m_link);

    const std::unique_ptr<Line> second = open();
    QVERIFY(second);
    QVERIFY(QFile::symLinkTarget(m_link).startsWith("/dev/pts/"));
    QVERIFY(QFile::symLinkTarget(m_link) != firstTarget);
}

void TestBoxsimLine::leavesOtherFilesAlone_data()
{
    QTest::addColumn<bool>("throughALink");

    QTest::newRow("a file") << false;
    QTest::newRow("a link to a file") << true;
}

void TestBoxsimLine::leavesOtherFilesAlone()
{
    QFETCH(bool, throughALink);
    QFile file(throughALink ? m_folder->filePath("file") : m_link);
    QVERIFY(file.open(QIODevice::WriteOnly));
    QCOMPARE(file.write("kept"), qint64(4));
    file.close();
    if (throughALink)
        QVERIFY(QFile::link(file.fileName(), m_link));
    QString error;

    QVERIFY(!boxsim::openPty(m_link, &error));

    QCOMPARE(error,
             m_link + " exists and is not a link to a pseudo-terminal; remove it or choose another path");
    QVERIFY(file.open(QIODevice::ReadOnly));
    QCOMPARE(file.readAll(), QByteArray("kept"));
    QCOMPARE(QFileInfo(m_link).isSymLink(), throughALink);
}

void TestBoxsimLine::leavesALinkAloneThatIsNotItsOwnAnyMore()
{
    std::unique_ptr<Line> first = open();
    const std::unique_ptr<Line> second = open();
    QVERIFY(first && second);
    const QString target = QFile::symLinkTarget(m_link);

    first.reset();

    QCOMPARE(QFile::symLinkTarget(m_link), target);
}

void TestBoxsimLine::saysWhyTheLinkCannotBeMade()
{
    const QString link = m_folder->filePath("nofolder/box");
    QString error;

    QVERIFY(!boxsim::openPty(link, &error));
    QCOMPARE(error, QStringLiteral("cannot make the link %1: No such file or directory").arg(link));
}

void TestBoxsimLine::saysWhyAPortCannotBeOpened()
{
    QString error;

    QVERIFY(!boxsim::openPort(m_link, 57600, &error));
    QCOMPARE(error,
             QStringLiteral("cannot open %1: No such file or directory: name a serial device with --port")
                 .arg(m_link));
    QVERIFY(!boxsim::openPort("there-is-no-such-port", 57600, &error));
    QVERIFY2(error.startsWith("cannot open there-is-no-such-port (tried /dev/there-is-no-such-port): "),
             qPrintable(error));
}

void TestBoxsimLine::talksOverAnyDeviceAsAPort()
{
    const std::unique_ptr<Line> far = open();
    QVERIFY(far);
    QString error;
    const std::unique_ptr<Line> port = boxsim::openPort(m_link, 57600, &error);
    QVERIFY2(port, qPrintable(error));
    QByteArray atPort;
    QByteArray atFar;
    connect(port.get(), &Line::received, this, [&atPort](const QByteArray &bytes) { atPort += bytes; });
    connect(far.get(), &Line::received, this, [&atFar](const QByteArray &bytes) { atFar += bytes; });

    far->write(everyByte());
    port->write(everyByte());

    QTRY_COMPARE_WITH_TIMEOUT(atPort, everyByte(), 30000);
    QTRY_COMPARE_WITH_TIMEOUT(atFar, everyByte(), 30000);
}

void TestBoxsimLine::saysOnceThatThePortIsGone()
{
    std::unique_ptr<Line> far = open();
    QVERIFY(far);
    QString error;
    const std::unique_ptr<Line> port = boxsim::openPort(m_link, 57600, &error);
    QVERIFY2(port, qPrintable(error));
    QStringList failures;
    connect(port.get(), &Line::failed, this, [&failures](const QString &text) { failures.append(text); });

    far.reset();
    QTRY_COMPARE_WITH_TIMEOUT(failures.size(), 1, 30000);
    port->write(bytes("9f 06"));
    for (int i = 0; i < 1000; ++i)
        QCoreApplication::processEvents();

    QCOMPARE(failures, QStringList {m_link + " is gone: connect it and start again"});
}

QTEST_GUILESS_MAIN(TestBoxsimLine)
#include "tst_boxsim_line.moc"
