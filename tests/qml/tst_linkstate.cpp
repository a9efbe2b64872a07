#include "linkstate.h"

#include <hexbytes.h>
#include <longestwait.h>
#include <pseudoterminal.h>

#include <canbusplayer.h>
#include <velcanbusprotocol.h>

#include <QtCore/QCoreApplication>
#include <QtCore/QMutexLocker>
#include <QtCore/QThread>
#include <QtCore/QTimer>
#include <QtTest/QSignalSpy>
#include <QtTest/QTest>

#include <memory>

using namespace canbus;
using canbus::qml::FramesModel;
using canbus::qml::LinkState;

namespace {

/// A protocol that counts nothing and writes what the test wants.
class PlainProtocol : public CanbusProtocol {
public:
    void analyseData(QByteArray) override { }
};

/// A protocol that nothing happens to.
class QuietProtocol : public PlainProtocol {
public:
    LinkHealth *linkHealth() const override { return m_health.get(); }

private:
    std::unique_ptr<LinkHealth> m_health = std::make_unique<LinkHealth>();
};

/// What is no frame would wait there for the next test's.
void clearReceiveBuffer()
{
    const QMutexLocker lock(&CanBusReadBuff::instance()->mutex);
    CanBusReadBuff::instance()->data.clear();
}

/// Lets a link with the shortest interval look some times.
void waitForLooks()
{
    QTimer looks;
    const QSignalSpy looked(&looks, &QTimer::timeout);
    looks.start(LinkState::kShortestRefreshMs);
    QTRY_VERIFY_WITH_TIMEOUT(looked.count() >= 5, kLongestWaitMs);
}

QString hexOf(LinkState &link, int row)
{
    return link.frames()->data(link.frames()->index(row), FramesModel::HexRole).toString();
}

} // namespace

/// When the link's state wakes up, and what it listens to.
class TestLinkState : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void sleepsWhileNobodyListens();
    void looksWhileSomebodyListens();
    void takesNoShorterIntervalThan50Ms();
    void announcesFiguresThatHaveChanged();
    void announcesNoFiguresThatStayAsTheyAre();
    void isValidOnceAFrameHasArrived();
    void isValidWhileTheLinkIsUp();
    void hasNoFiguresOfAProtocolThatCountsNone();
    void waitsForAProtocolToRecord();
    void recordsTheNextProtocol();
    void doesNotRecordTheFormerProtocol();
    void takesNothingThatWasUnderWayWhenRecordingEnded();
    void recordsInTheOrderOfWriting();
    void recordsOnceWhenStartedAgain();
    void beginsWithAWholeFrameWhenStartedAgain();

private:
    void join(CanbusProtocol *protocol)
    {
        CanBusPlayer::instance()->setUartPort(m_line.name(), 57600);
        CanBusPlayer::instance()->init(protocol);
    }

    PseudoTerminal m_line;
};

void TestLinkState::sleepsWhileNobodyListens()
{
    const LinkState link;
    QVERIFY(!link.isRefreshing());
    QVERIFY(link.figures().isEmpty());
    QVERIFY(!link.isRefreshing());
}

void TestLinkState::looksWhileSomebodyListens()
{
    LinkState link;
    link.setRefreshInterval(50);
    {
        const QSignalSpy others(&link, &LinkState::lastSentChanged);
        QVERIFY(!link.isRefreshing());
        const QSignalSpy figures(&link, &LinkState::figuresChanged);
        QVERIFY(link.isRefreshing());
    }
    QTRY_VERIFY_WITH_TIMEOUT(!link.isRefreshing(), kLongestWaitMs);
}

void TestLinkState::takesNoShorterIntervalThan50Ms()
{
    LinkState link;
    QCOMPARE(link.refreshInterval(), 500);
    const QSignalSpy changed(&link, &LinkState::refreshIntervalChanged);
    link.setRefreshInterval(-1);
    QCOMPARE(link.refreshInterval(), 50);
    link.setRefreshInterval(0);
    QCOMPARE(changed.count(), 1);
    link.setRefreshInterval(2000);
    QCOMPARE(link.refreshInterval(), 2000);
    QCOMPARE(changed.count(), 2);
}

void TestLinkState::announcesFiguresThatHaveChanged()
{
    VelCanBusProtocol protocol;
    join(&protocol);
    LinkState link;
    link.setRefreshInterval(50);
    const QSignalSpy changed(&link, &LinkState::figuresChanged);
    QCOMPARE(link.figures().value(QStringLiteral("receivedBytes")).toULongLong(), 0U);
    QVERIFY(m_line.send(bytes("31 32 33")));
    QTRY_COMPARE_WITH_TIMEOUT(link.figures().value(QStringLiteral("receivedBytes")).toULongLong(), 3U,
                              kLongestWaitMs);
    QTRY_VERIFY_WITH_TIMEOUT(!changed.isEmpty(), kLongestWaitMs);
    clearReceiveBuffer();
}

void TestLinkState::announcesNoFiguresThatStayAsTheyAre()
{
    QuietProtocol protocol;
    join(&protocol);
    LinkState link;
    link.setRefreshInterval(50);
    QVERIFY(!link.figures().isEmpty());
    const QSignalSpy changed(&link, &LinkState::figuresChanged);
    waitForLooks();
    QVERIFY(link.isRefreshing());
    QCOMPARE(changed.count(), 0);
}

void TestLinkState::isValidOnceAFrameHasArrived()
{
    VelCanBusProtocol protocol;
    join(&protocol);
    LinkState link;
    link.setRefreshInterval(50);
    const QSignalSpy changed(&link, &LinkState::figuresChanged);
    QVERIFY(!link.isValid());
    QVERIFY(m_line.send(bytes("9f 02 55 02 00 0d 5a 9f 03")));
    QTRY_VERIFY_WITH_TIMEOUT(link.isValid(), kLongestWaitMs);
    QVERIFY(link.isStale());
    QVERIFY(LinkState().isValid());
}

void TestLinkState::isValidWhileTheLinkIsUp()
{
    PlainProtocol protocol;
    join(&protocol);
    CanBusPlayer::instance()->setCanbusConnectStatus(true);
    const LinkState link;
    QVERIFY(link.isConnected());
    QVERIFY(link.isValid());
    QVERIFY(!link.isStale());
    CanBusPlayer::instance()->setCanbusConnectStatus(false);
    QVERIFY(!link.isConnected());
    QVERIFY(link.isValid());
    QVERIFY(link.isStale());
}

void TestLinkState::hasNoFiguresOfAProtocolThatCountsNone()
{
    PlainProtocol protocol;
    join(&protocol);
    const LinkState link;
    QVERIFY(link.figures().isEmpty());
    QVERIFY(!link.isValid());
}

void TestLinkState::waitsForAProtocolToRecord()
{
    LinkState link;
    link.setRefreshInterval(50);
    link.setRecording(true);
    waitForLooks();
    QVERIFY(link.isRefreshing());
    PlainProtocol protocol;
    join(&protocol);
    QTRY_VERIFY_WITH_TIMEOUT(!link.isRefreshing(), kLongestWaitMs);
    Q_EMIT protocol.onWritPortData(bytes("9f 06 21 21 9f 03"));
    QTRY_COMPARE_WITH_TIMEOUT(link.lastSent(), QStringLiteral("9f 06 21 21 9f 03"), kLongestWaitMs);
}

void TestLinkState::recordsTheNextProtocol()
{
    LinkState link;
    link.setRefreshInterval(50);
    auto first = std::make_unique<PlainProtocol>();
    join(first.get());
    link.setRecording(true);
    QVERIFY(!link.isRefreshing());
    first.reset();
    QVERIFY(link.isRefreshing());
    PlainProtocol second;
    join(&second);
    QTRY_VERIFY_WITH_TIMEOUT(!link.isRefreshing(), kLongestWaitMs);
    Q_EMIT second.onWritPortData(bytes("31"));
    QTRY_COMPARE_WITH_TIMEOUT(link.lastSent(), QStringLiteral("31"), kLongestWaitMs);
}

void TestLinkState::doesNotRecordTheFormerProtocol()
{
    LinkState link;
    link.setRefreshInterval(50);
    PlainProtocol first;
    PlainProtocol second;
    join(&first);
    link.setRecording(true);
    join(&second);
    // The next look finds the second.
    const QSignalSpy figures(&link, &LinkState::figuresChanged);
    Q_EMIT first.onWritPortData(bytes("31"));
    QTRY_COMPARE_WITH_TIMEOUT(link.frames()->rowCount(), 1, kLongestWaitMs);
    const auto isSecondHeard = [&] {
        Q_EMIT second.onWritPortData(bytes("32"));
        QCoreApplication::processEvents();
        return link.lastSent() == QStringLiteral("32");
    };
    QTRY_VERIFY_WITH_TIMEOUT(isSecondHeard(), kLongestWaitMs);
    const int recorded = link.frames()->rowCount();
    Q_EMIT first.onWritPortData(bytes("33"));
    QCoreApplication::processEvents();
    QCOMPARE(link.frames()->rowCount(), recorded);
}

void TestLinkState::takesNothingThatWasUnderWayWhenRecordingEnded()
{
    LinkState link;
    PlainProtocol protocol;
    join(&protocol);
    link.setRecording(true);
    Q_EMIT protocol.onWritPortData(bytes("31"));
    Q_EMIT CanBusReadBuff::instance()->received(bytes("9f 06 21 21 9f 03"));
    link.setRecording(false);
    QCoreApplication::processEvents();
    QCOMPARE(link.frames()->rowCount(), 0);
    QVERIFY(!link.isRefreshing());
}

void TestLinkState::recordsInTheOrderOfWriting()
{
    LinkState link;
    PlainProtocol protocol;
    join(&protocol);
    link.setRecording(true);
    const std::unique_ptr<QThread> parser(
        QThread::create([&] { Q_EMIT protocol.onWritPortData(bytes("31")); }));
    parser->start();
    QVERIFY(parser->wait());
    Q_EMIT protocol.onWritPortData(bytes("32"));
    QTRY_COMPARE_WITH_TIMEOUT(link.frames()->rowCount(), 2, kLongestWaitMs);
    QCOMPARE(hexOf(link, 0), QStringLiteral("32"));
    QCOMPARE(hexOf(link, 1), QStringLiteral("31"));
}

void TestLinkState::recordsOnceWhenStartedAgain()
{
    LinkState link;
    PlainProtocol protocol;
    join(&protocol);
    for (const bool isRecording : {true, false, true})
        link.setRecording(isRecording);
    Q_EMIT CanBusReadBuff::instance()->received(bytes("9f 06 21 21 9f 03"));
    Q_EMIT protocol.onWritPortData(bytes("31"));
    QTRY_COMPARE_WITH_TIMEOUT(link.lastSent(), QStringLiteral("31"), kLongestWaitMs);
    QCOMPARE(link.frames()->rowCount(), 2);
    QCOMPARE(hexOf(link, 1), QStringLiteral("9f 06 21 21 9f 03"));
}

void TestLinkState::beginsWithAWholeFrameWhenStartedAgain()
{
    LinkState link;
    PlainProtocol protocol;
    join(&protocol);
    link.setRecording(true);
    Q_EMIT CanBusReadBuff::instance()->received(bytes("9f 02 21"));
    QCoreApplication::processEvents();
    link.setRecording(false);
    link.setRecording(true);
    Q_EMIT CanBusReadBuff::instance()->received(bytes("9f 06 21 21 9f 03"));
    QTRY_COMPARE_WITH_TIMEOUT(link.lastReceived(), QStringLiteral("9f 06 21 21 9f 03"), kLongestWaitMs);
    QCOMPARE(link.frames()->rowCount(), 1);
}

QTEST_GUILESS_MAIN(TestLinkState)
#include "tst_linkstate.moc"
