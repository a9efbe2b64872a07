#include "hexbytes.h"
#include "linetest.h"
#include "longestwait.h"
#include "plaindevice.h"

#include <QtCore/QCoreApplication>
#include <QtCore/QFile>
#include <QtCore/QFileInfo>
#include <QtTest/QSignalSpy>
#include <QtTest/QTest>

#include <cerrno>

using boxsim::Line;

class TestBoxsimLineHangUp : public LineTest {
    Q_OBJECT

private Q_SLOTS:
    void init() { makeFolder(); }
    void hangsUpOnTheHeadUnitAndTakesTheLinkAway();
    void comesBackBehindTheSameLink();
    void losesWhatIsWrittenWhileItIsGone();
    void hangsUpFromWithinTheNewsOfBytes();
    void removesTheLinkAtItsEndAfterAReturn();
    void leavesAnotherFileAloneWhenItComesBack();
    void closesAndReopensAPort();
    void saysThatAPortDidNotComeBack();
};

void TestBoxsimLineHangUp::hangsUpOnTheHeadUnitAndTakesTheLinkAway()
{
    const std::unique_ptr<Line> line = open();
    QVERIFY(line);
    QSignalSpy failed(line.get(), &Line::failed);
    const int headUnit = ::open(qPrintable(m_link), O_RDWR | O_NOCTTY | O_NONBLOCK);
    QVERIFY(headUnit >= 0);
    char byte = 0;
    QCOMPARE(::read(headUnit, &byte, 1), ssize_t(-1));
    QCOMPARE(errno, EAGAIN);

    line->hangUp();

    QCOMPARE(::read(headUnit, &byte, 1), ssize_t(0));
    QCOMPARE(::write(headUnit, &byte, 1), ssize_t(-1));
    QCOMPARE(errno, EIO);
    QVERIFY(!QFileInfo(m_link).isSymLink());
    QCoreApplication::processEvents();
    QCOMPARE(failed.size(), 0);
    ::close(headUnit);
}

void TestBoxsimLineHangUp::comesBackBehindTheSameLink()
{
    const std::unique_ptr<Line> line = open();
    QVERIFY(line);
    QByteArray arrived;
    connect(line.get(), &Line::received, this, [&arrived](const QByteArray &bytes) { arrived += bytes; });

    for (int i = 1; i <= 3; ++i) {
        line->hangUp();
        line->comeBack();
        Device device(m_link);
        QVERIFY(device.isOpen());
        QVERIFY(device.write(bytes("9f 06")));
        QTRY_COMPARE_WITH_TIMEOUT(arrived.size(), 2 * i, kLongestWaitMs);
        line->write(bytes("0a 9f"));
        QTRY_COMPARE_WITH_TIMEOUT(device.received(), bytes("0a 9f"), kLongestWaitMs);
    }
}

void TestBoxsimLineHangUp::losesWhatIsWrittenWhileItIsGone()
{
    const std::unique_ptr<Line> line = open();
    QVERIFY(line);
    line->hangUp();

    line->write(bytes("01"));
    line->comeBack();
    Device device(m_link);
    line->write(bytes("02"));

    QTRY_COMPARE_WITH_TIMEOUT(device.received(), bytes("02"), kLongestWaitMs);
}

void TestBoxsimLineHangUp::hangsUpFromWithinTheNewsOfBytes()
{
    const std::unique_ptr<Line> line = open();
    QVERIFY(line);
    int news = 0;
    connect(line.get(), &Line::received, this, [&] {
        ++news;
        line->hangUp();
    });
    Device device(m_link);

    QVERIFY(device.write(bytes("01")));

    QTRY_COMPARE_WITH_TIMEOUT(news, 1, kLongestWaitMs);
    QVERIFY(!device.write(bytes("02")));
}

void TestBoxsimLineHangUp::removesTheLinkAtItsEndAfterAReturn()
{
    std::unique_ptr<Line> line = open();
    QVERIFY(line);
    line->hangUp();
    line->comeBack();
    QVERIFY(QFile::symLinkTarget(m_link).startsWith("/dev/pts/"));

    line.reset();

    QVERIFY(!QFileInfo(m_link).isSymLink());
}

void TestBoxsimLineHangUp::leavesAnotherFileAloneWhenItComesBack()
{
    std::unique_ptr<Line> line = open();
    QVERIFY(line);
    QStringList failures;
    connect(line.get(), &Line::failed, this, [&failures](const QString &text) { failures.append(text); });
    line->hangUp();
    QFile file(m_link);
    QVERIFY(file.open(QIODevice::WriteOnly));
    QCOMPARE(file.write("kept"), qint64(4));
    file.close();

    line->comeBack();
    line.reset();

    QCOMPARE(failures,
             QStringList {m_link
                          + " exists and is not a link to a pseudo-terminal; remove it or choose another "
                            "path"});
    QVERIFY(file.open(QIODevice::ReadOnly));
    QCOMPARE(file.readAll(), QByteArray("kept"));
}

void TestBoxsimLineHangUp::closesAndReopensAPort()
{
    const std::unique_ptr<Line> far = open();
    QVERIFY(far);
    QString error;
    const std::unique_ptr<Line> port = boxsim::openPort(m_link, 57600, &error);
    QVERIFY2(port, qPrintable(error));
    QStringList failures;
    QByteArray atPort;
    QByteArray atFar;
    connect(port.get(), &Line::failed, this, [&failures](const QString &text) { failures.append(text); });
    connect(port.get(), &Line::received, this, [&atPort](const QByteArray &bytes) { atPort += bytes; });
    connect(far.get(), &Line::received, this, [&atFar](const QByteArray &bytes) { atFar += bytes; });

    port->hangUp();
    QCoreApplication::processEvents();
    port->write(bytes("01"));
    port->comeBack();
    port->write(bytes("02"));
    far->write(bytes("03"));

    QTRY_COMPARE_WITH_TIMEOUT(atFar, bytes("02"), kLongestWaitMs);
    QTRY_COMPARE_WITH_TIMEOUT(atPort, bytes("03"), kLongestWaitMs);
    QCOMPARE(failures, QStringList());
}

void TestBoxsimLineHangUp::saysThatAPortDidNotComeBack()
{
    std::unique_ptr<Line> far = open();
    QVERIFY(far);
    QString error;
    const std::unique_ptr<Line> port = boxsim::openPort(m_link, 57600, &error);
    QVERIFY2(port, qPrintable(error));
    QStringList failures;
    connect(port.get(), &Line::failed, this, [&failures](const QString &text) { failures.append(text); });

    port->hangUp();
    QCoreApplication::processEvents();
    far.reset();
    port->comeBack();

    QCOMPARE(
        failures,
        QStringList {m_link + " did not come back: No such file or directory: connect it and start again"});
}

QTEST_GUILESS_MAIN(TestBoxsimLineHangUp)
#include "tst_boxsim_linehangup.moc"
