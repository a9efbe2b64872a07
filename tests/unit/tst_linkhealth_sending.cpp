#include "figurechanges.h"
#include "handdrivenprotocol.h"
#include "hexbytes.h"

#include "link/linkhealth_p.h"

#include <QtCore/QElapsedTimer>
#include <QtCore/QThread>
#include <QtTest/QTest>

using namespace canbus;

namespace {

const QByteArray kFirst = bytes("9f 02 31 93 00 a2 9f 03");
const QByteArray kSecond = bytes("9f 02 32 94 00 a6 9f 03");
const QByteArray kReady = bytes("9f 02 35 01 00 00 01 35 9f 03");
const QByteArray kNotReady = bytes("9f 02 35 01 00 00 00 34 9f 03");

/// Fetches what a change of figures by this name amounts to, or nothing.
QStringList only(const QStringList &changes, const QString &name)
{
    return changes.filter(name);
}

} // namespace

/// The figures of sending and of the link's state, driven by hand: what counts for each, and that nothing
/// else does.
class LinkHealthSendingTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void countsSentFrames_data();
    void countsSentFrames();
    void countsTheLoopBackReplyAsBytesAlone();
    void countsRetransmissionsAndFramesGivenUp();
    void countsRefusedCommands();
    void keepsTheMostThatWasCached();
    void countsAnswersThatTakeAFrameOff();
    void countsConnectRequestsOnce();
    void countsConnectionChecksOnce();
    void countsALostLink();

    void summarisesTheTimesOfAnswers();
    void takesNoTimesFromOtherFates();
    void leavesAnswersToUnsentFramesOutOfTheTimes();
    void countsNothingForAFateThatIsNone();
    void timesAnAnswerFromTheFirstTransmission();
};

void LinkHealthSendingTest::countsSentFrames_data()
{
    QTest::addColumn<QByteArray>("frame");
    QTest::addColumn<QStringList>("changes");

    const auto row = [](const char *name, const char *frame) {
        const QByteArray block = bytes(frame);
        const QString size = QString::number(block.size());
        QTest::newRow(name) << block
                            << QStringList {"cacheHighWater 1",
                                            QString("sentByCommand.%1.bytes ").arg(name) + size,
                                            QString("sentByCommand.%1.frames 1").arg(name),
                                            "sentBytes " + size, "sentFrames 1"};
    };
    row("Connection", "9f 02 21 01 00 00 00 20 9f 03");
    row("MenuPress", "9f 02 31 91 00 01 02 01 a2 9f 03");
    row("Settings", "9f 02 31 92 00 a3 9f 03");
    row("ClimateButton", "9f 02 31 93 00 12 01 00 b1 9f 03");
    row("GaugesButton", "9f 02 31 94 00 01 01 a5 9f 03");
    row("VehicleButton", "9f 02 31 95 00 01 01 a4 9f 03");
    row("ParkingButton", "9f 02 31 96 00 01 01 a7 9f 03");
    row("RequestData", "9f 02 22 97 00 00 b5 9f 03");
    row("Time", "9f 02 23 98 00 00 00 00 00 00 00 00 bb 9f 03");
    row("Other", "9f 02 31 90 00 a1 9f 03");
    QTest::newRow("an id that is an escape stands twice before the command")
        << bytes("9f 02 9f9f 93 00 0c 9f 03")
        << QStringList {"cacheHighWater 1", "sentByCommand.ClimateButton.bytes 9",
                        "sentByCommand.ClimateButton.frames 1", "sentBytes 9", "sentFrames 1"};
    QTest::newRow("an escape as id that a host has not doubled")
        << bytes("9f 02 9f 93 00 0c 9f 03")
        << QStringList {"cacheHighWater 1", "sentByCommand.ClimateButton.bytes 8",
                        "sentByCommand.ClimateButton.frames 1", "sentBytes 8", "sentFrames 1"};
    QTest::newRow("a command that opens like no frame")
        << bytes("9f 03 31 93 00") << QStringList {"cacheHighWater 1", "sentBytes 5"};
    QTest::newRow("a command that is no frame")
        << bytes("41 02 31 93 00") << QStringList {"cacheHighWater 1", "sentBytes 5"};
}

void LinkHealthSendingTest::countsSentFrames()
{
    QFETCH(QByteArray, frame);
    HandDrivenProtocol protocol;
    FigureChanges changes(protocol->linkHealth());
    protocol->onSaveSendCmdData(frame);
    QTEST(changes.take(), "changes");
}

void LinkHealthSendingTest::countsTheLoopBackReplyAsBytesAlone()
{
    HandDrivenProtocol protocol;
    FigureChanges changes(protocol->linkHealth());
    protocol->analyseData("12");
    QCOMPARE(changes.take(), QStringList {"sentBytes 12"});
}

void LinkHealthSendingTest::countsRetransmissionsAndFramesGivenUp()
{
    const QStringList again {"retransmissions 1", "sentByCommand.ClimateButton.bytes 8",
                             "sentByCommand.ClimateButton.frames 1", "sentBytes 8", "sentFrames 1"};
    HandDrivenProtocol protocol;
    protocol->onSaveSendCmdData(kFirst);
    FigureChanges changes(protocol->linkHealth());
    protocol->onSendTmrout();
    QCOMPARE(changes.take(), again);
    protocol->restartSendTmr();
    QCOMPARE(changes.take(), again);
    protocol->onSendTmrout();
    QCOMPARE(changes.take(), QStringList {"givenUp 1"});
    protocol->onSendTmrout();
    QCOMPARE(changes.take(), QStringList());
}

void LinkHealthSendingTest::countsRefusedCommands()
{
    HandDrivenProtocol protocol;
    for (int i = 0; i < 65; ++i)
        protocol->onSaveSendCmdData(kFirst);
    FigureChanges changes(protocol->linkHealth());
    protocol->onSaveSendCmdData(kSecond);
    protocol->onSaveSendCmdData(kSecond);
    QCOMPARE(changes.take(), QStringList {"refusedFull 2"});
}

void LinkHealthSendingTest::keepsTheMostThatWasCached()
{
    HandDrivenProtocol protocol;
    protocol->onSaveSendCmdData(kFirst);
    protocol->onSaveSendCmdData(kFirst);
    protocol->onSaveSendCmdData(kFirst);
    QCOMPARE(protocol->linkHealth()->figures().cacheHighWater, 3U);
    protocol->removeSendCmdData(0x31);
    protocol->removeSendCmdData(0x31);
    protocol->onSaveSendCmdData(kSecond);
    QCOMPARE(protocol->linkHealth()->figures().cacheHighWater, 3U);
}

void LinkHealthSendingTest::countsAnswersThatTakeAFrameOff()
{
    HandDrivenProtocol protocol;
    protocol->onSaveSendCmdData(kFirst);
    FigureChanges changes(protocol->linkHealth());
    protocol.passOver(bytes("9f 06 32 32 9f 03"));
    QCOMPARE(changes.take(), (QStringList {"bufferHighWater 6", "receivedAcks 1"}));
    protocol.passOver(bytes("9f 15 31 31 9f 03"));
    QCOMPARE(changes.take(), (QStringList {"answers 1", "receivedNacks 1"}));
    protocol->onSaveSendCmdData(kFirst);
    changes.take();
    protocol.passOver(bytes("9f 06 31 31 9f 03"));
    QCOMPARE(changes.take(), (QStringList {"answers 1", "receivedAcks 1"}));
}

void LinkHealthSendingTest::countsConnectRequestsOnce()
{
    HandDrivenProtocol protocol;
    FigureChanges changes(protocol->linkHealth());
    protocol->onRequestConnect();
    QCOMPARE(only(changes.take(), "connect"), QStringList {"connectRequests 1"});
    protocol->onSendTmrout();
    QCOMPARE(only(changes.take(), "connect"), QStringList());
    protocol.passOver(kNotReady);
    QCOMPARE(only(changes.take(), "connect"), QStringList {"connectRequests 1"});
}

void LinkHealthSendingTest::countsConnectionChecksOnce()
{
    HandDrivenProtocol protocol;
    FigureChanges changes(protocol->linkHealth());
    protocol.passOver(kReady);
    QCOMPARE(only(changes.take(), "connect"), QStringList {"connectionChecks 1"});
    protocol->onSendTmrout();
    QCOMPARE(only(changes.take(), "connect"), QStringList());
    protocol->onCheckConnectTmrout();
    QCOMPARE(only(changes.take(), "connect"), QStringList {"connectionChecks 1"});
}

void LinkHealthSendingTest::countsALostLink()
{
    HandDrivenProtocol protocol;
    protocol.passOver(kReady);
    FigureChanges changes(protocol->linkHealth());
    protocol->onSendTmrout();
    protocol->onSendTmrout();
    QCOMPARE(only(changes.take(), "linkLosses"), QStringList());
    protocol->onSendTmrout();
    QCOMPARE(changes.take(), (QStringList {"givenUp 1", "linkLosses 1"}));
}

void LinkHealthSendingTest::summarisesTheTimesOfAnswers()
{
    LinkHealthPrivate counters;
    counters.countEnded(LinkHealth::Fate::Acknowledged, 1, 100);
    QCOMPARE(counters.figures().lastAnswerUs, 100U);
    QCOMPARE(counters.figures().meanAnswerUs, 100U);
    QCOMPARE(counters.figures().maxAnswerUs, 100U);
    counters.countEnded(LinkHealth::Fate::Refused, 2, 900);
    counters.countEnded(LinkHealth::Fate::Acknowledged, 1, 500);
    QCOMPARE(counters.figures().answers, 3U);
    QCOMPARE(counters.figures().lastAnswerUs, 500U);
    QCOMPARE(counters.figures().meanAnswerUs, 500U);
    QCOMPARE(counters.figures().maxAnswerUs, 900U);
}

void LinkHealthSendingTest::takesNoTimesFromOtherFates()
{
    LinkHealthPrivate counters;
    counters.countEnded(LinkHealth::Fate::GivenUp, 3, 900000);
    counters.countEnded(LinkHealth::Fate::NotAccepted, 0, 0);
    QCOMPARE(counters.figures().answers, 0U);
    QCOMPARE(counters.figures().lastAnswerUs, 0U);
    QCOMPARE(counters.figures().meanAnswerUs, 0U);
    QCOMPARE(counters.figures().maxAnswerUs, 0U);
    QCOMPARE(counters.figures().givenUp, 1U);
    QCOMPARE(counters.figures().refusedFull, 1U);
}

void LinkHealthSendingTest::leavesAnswersToUnsentFramesOutOfTheTimes()
{
    LinkHealthPrivate counters;
    counters.countEnded(LinkHealth::Fate::Acknowledged, 1, 300);
    counters.countEnded(LinkHealth::Fate::Acknowledged, 0, 0);
    QCOMPARE(counters.figures().answers, 2U);
    QCOMPARE(counters.figures().lastAnswerUs, 300U);
    QCOMPARE(counters.figures().meanAnswerUs, 300U);
    QCOMPARE(counters.figures().maxAnswerUs, 300U);
}

void LinkHealthSendingTest::countsNothingForAFateThatIsNone()
{
    LinkHealthPrivate counters;
    counters.countEnded(LinkHealth::Fate(9), 1, 300);
    QCOMPARE(counters.figures().answers, 0U);
    QCOMPARE(counters.figures().givenUp, 0U);
    QCOMPARE(counters.figures().refusedFull, 0U);
}

void LinkHealthSendingTest::timesAnAnswerFromTheFirstTransmission()
{
    HandDrivenProtocol protocol;
    QElapsedTimer around;
    around.start();
    protocol->onSaveSendCmdData(kFirst);
    QElapsedTimer within;
    within.start();
    // Long enough to tell a thousandth of it.
    while (within.nsecsElapsed() < 100000000)
        QThread::yieldCurrentThread();
    protocol->onSendTmrout();
    const qint64 shortestUs = within.nsecsElapsed() / 1000;
    protocol.passOver(bytes("9f 06 31 31 9f 03"));
    const qint64 longestUs = around.nsecsElapsed() / 1000;
    const qint64 tookUs = qint64(protocol->linkHealth()->figures().lastAnswerUs);
    QVERIFY2(tookUs >= shortestUs && tookUs <= longestUs, qPrintable(QString::number(tookUs)));
}

QTEST_GUILESS_MAIN(LinkHealthSendingTest)
#include "tst_linkhealth_sending.moc"
