#include "figurechanges.h"
#include "handdrivenprotocol.h"
#include "hexbytes.h"

#include <QtTest/QTest>

using namespace canbus;

namespace {

/// What a good frame of 8 bytes, with an id of one byte, changes beside its category.
QStringList withAcknowledgement(const QStringList &ofCategory)
{
    return QStringList {"bufferHighWater 8"} + ofCategory
        + QStringList {"receivedFrames 1", "sentAcks 1", "sentBytes 6"};
}

} // namespace

/// The figures of receiving, driven by hand: what counts for each, and that nothing else does.
class LinkHealthTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void startsWithEveryNameAtZero();
    void countsReceivedFrames_data();
    void countsReceivedFrames();
    void countsWhatElseComes_data();
    void countsWhatElseComes();
    void countsADiscardedBuffer();
    void keepsTheMostThatWasBuffered();
    void countsBytesFromTheLine();
    void countsARequestForTheMissingEndOnEachPass();

    void countsBeforeItTells();
    void countsForEachProtocolFromZero();

private:
    static void passesOnceWith(const QByteArray &received, const QStringList &expected);
};

void LinkHealthTest::startsWithEveryNameAtZero()
{
    HandDrivenProtocol protocol;
    const LinkFigures figures = protocol->linkHealth()->figures();
    const QStringList categories {"Climate",       "Gauges",      "Other",
                                  "ParkingAssist", "ScreensInfo", "ScreensTransition",
                                  "TextScreen",    "Vehicle",     "Version"};
    QCOMPARE(figures.receivedByCategory.keys(), categories);
    const QStringList commands {"ClimateButton", "Connection",  "GaugesButton", "MenuPress", "Other",
                                "ParkingButton", "RequestData", "Settings",     "Time",      "VehicleButton"};
    QCOMPARE(figures.sentByCommand.keys(), commands);
    const QVariantMap all = flattened(figures);
    QCOMPARE(all.size(), 26 + 9 * 2 + 10 * 2);
    for (auto figure = all.begin(); figure != all.end(); ++figure) {
        QVERIFY2(figure.value().type() == QVariant::ULongLong, qPrintable(figure.key()));
        QVERIFY2(figure.value().toULongLong() == 0, qPrintable(figure.key()));
    }
}

void LinkHealthTest::countsReceivedFrames_data()
{
    QTest::addColumn<QByteArray>("received");
    QTest::addColumn<QStringList>("changes");

    const auto row = [](const char *frame, const QStringList &ofCategory) {
        QTest::newRow(qPrintable(ofCategory.first())) << bytes(frame) << withAcknowledgement(ofCategory);
    };
    QTest::newRow("receivedByCategory.Version.frames 1")
        << bytes("9f 02 21 01 00 00 02 22 9f 03")
        << QStringList {"bufferHighWater 10",
                        "receivedByCategory.Version.bytes 2",
                        "receivedByCategory.Version.frames 1",
                        "receivedFrames 1",
                        "sentAcks 1",
                        "sentBytes 6"};
    row("9f 02 21 02 00 23 9f 03", {"receivedByCategory.ScreensInfo.frames 1"});
    row("9f 02 21 03 05 27 9f 03", {"receivedByCategory.Climate.frames 1"});
    row("9f 02 21 04 00 25 9f 03", {"receivedByCategory.Gauges.frames 1"});
    row("9f 02 21 05 00 24 9f 03", {"receivedByCategory.Vehicle.frames 1"});
    row("9f 02 21 06 00 27 9f 03", {"receivedByCategory.ParkingAssist.frames 1"});
    row("9f 02 21 07 00 26 9f 03", {"receivedByCategory.ScreensTransition.frames 1"});
    row("9f 02 21 11 00 30 9f 03", {"receivedByCategory.TextScreen.frames 1"});
    row("9f 02 21 08 00 29 9f 03", {"receivedByCategory.Other.frames 1"});
    QTest::newRow("a category of zero is another one too")
        << bytes("9f 02 21 00 00 21 9f 03") << withAcknowledgement({"receivedByCategory.Other.frames 1"});
    QTest::newRow("a payload counts unescaped, and once")
        << bytes("9f 02 21 03 05 9f9f 01 b9 9f 03")
        << QStringList {"bufferHighWater 11",
                        "receivedByCategory.Climate.bytes 2",
                        "receivedByCategory.Climate.frames 1",
                        "receivedFrames 1",
                        "sentAcks 1",
                        "sentBytes 6"};
    QTest::newRow("an id that is an escape is answered like any other")
        << bytes("9f 02 9f9f 08 00 97 9f 03")
        << QStringList {"bufferHighWater 9", "receivedByCategory.Other.frames 1", "receivedFrames 1",
                        "sentAcks 1", "sentBytes 6"};
}

/// The bytes come and a pass follows: that changes these figures, and another pass over what is left none.
void LinkHealthTest::passesOnceWith(const QByteArray &received, const QStringList &expected)
{
    HandDrivenProtocol protocol;
    FigureChanges changes(protocol->linkHealth());
    protocol.passOver(received);
    QCOMPARE(changes.take(), expected);
    protocol.passOver("");
    QCOMPARE(changes.take(), QStringList());
}

void LinkHealthTest::countsReceivedFrames()
{
    QFETCH(QByteArray, received);
    QFETCH(QStringList, changes);
    passesOnceWith(received, changes);
}

void LinkHealthTest::countsWhatElseComes_data()
{
    QTest::addColumn<QByteArray>("received");
    QTest::addColumn<QStringList>("changes");

    QTest::newRow("an acknowledgement of nothing")
        << bytes("9f 06 05 05 9f 03") << QStringList {"bufferHighWater 6", "receivedAcks 1"};
    QTest::newRow("a negative acknowledgement of nothing")
        << bytes("9f 15 05 05 9f 03") << QStringList {"bufferHighWater 6", "receivedNacks 1"};
    QTest::newRow("a data frame whose check fails")
        << bytes("9f 02 21 03 05 28 9f 03") << QStringList {"badChecks 1", "bufferHighWater 8"};
    QTest::newRow("an acknowledgement whose check fails")
        << bytes("9f 06 05 04 9f 03") << QStringList {"badChecks 1", "bufferHighWater 6"};
    QTest::newRow("a negative acknowledgement whose check fails")
        << bytes("9f 15 05 04 9f 03") << QStringList {"badChecks 1", "bufferHighWater 6"};
    QTest::newRow("bytes before an answer")
        << bytes("41 9f 42 9f 06 05 05 9f 03")
        << QStringList {"bufferHighWater 9", "receivedAcks 1", "skippedBytes 3"};
    QTest::newRow("bytes before a frame whose check fails")
        << bytes("41 9f 02 21 03 05 28 9f 03")
        << QStringList {"badChecks 1", "bufferHighWater 9", "skippedBytes 1"};
    QTest::newRow("bytes behind a frame that has escapes")
        << bytes("41 9f 02 21 03 05 9f9f b8 9f 03 9f9f 9f9f 42")
        << QStringList {"bufferHighWater 16",
                        "receivedByCategory.Climate.bytes 1",
                        "receivedByCategory.Climate.frames 1",
                        "receivedFrames 1",
                        "sentAcks 1",
                        "sentBytes 6",
                        "skippedBytes 1"};
    QTest::newRow("bytes that may become a frame")
        << bytes("41 9f 02 21") << QStringList {"bufferHighWater 4"};
    QTest::newRow("bytes without a mark") << bytes("41 42 9f 03") << QStringList {"bufferHighWater 4"};
}

void LinkHealthTest::countsWhatElseComes()
{
    QFETCH(QByteArray, received);
    QFETCH(QStringList, changes);
    passesOnceWith(received, changes);
}

void LinkHealthTest::countsADiscardedBuffer()
{
    HandDrivenProtocol protocol;
    FigureChanges changes(protocol->linkHealth());
    protocol.passOver(QByteArray(2048, 'A'));
    QCOMPARE(changes.take(), QStringList {"bufferHighWater 2048"});
    protocol.passOver("A");
    QCOMPARE(changes.take(),
             (QStringList {"bufferHighWater 1", "discardedBuffers 1", "discardedBytes 2049"}));
    protocol.passOver(QByteArray(3000, 'A'));
    QCOMPARE(changes.take(),
             (QStringList {"bufferHighWater 951", "discardedBuffers 1", "discardedBytes 3000"}));
}

void LinkHealthTest::keepsTheMostThatWasBuffered()
{
    HandDrivenProtocol protocol;
    FigureChanges changes(protocol->linkHealth());
    protocol.passOver(bytes("9f 06 05 05 9f 03 41"));
    QCOMPARE(changes.take(), (QStringList {"bufferHighWater 7", "receivedAcks 1"}));
    protocol.passOver(bytes("42 43 44 45 46"));
    QCOMPARE(changes.take(), QStringList());
    protocol.passOver(bytes("47 48"));
    QCOMPARE(changes.take(), QStringList {"bufferHighWater 1"});
}

void LinkHealthTest::countsBytesFromTheLine()
{
    HandDrivenProtocol protocol;
    FigureChanges changes(protocol->linkHealth());
    Q_EMIT HandDrivenProtocol::buffer()->received(bytes("41 42 43"));
    QCOMPARE(changes.take(), QStringList {"receivedBytes 3"});
    Q_EMIT HandDrivenProtocol::buffer()->received(QByteArray(5000, 'A'));
    QCOMPARE(changes.take(), QStringList {"receivedBytes 5000"});
}

void LinkHealthTest::countsARequestForTheMissingEndOnEachPass()
{
    const QStringList asksAgain {"awaitingNacks 1", "sentBytes 4", "sentNacks 1"};
    HandDrivenProtocol protocol;
    FigureChanges changes(protocol->linkHealth());
    protocol.passOver(bytes("9f 02 21 08 00 29 9f"));
    QCOMPARE(changes.take(),
             (QStringList {"awaitingNacks 1", "bufferHighWater 7", "sentBytes 4", "sentNacks 1"}));
    protocol.pass();
    QCOMPARE(changes.take(), asksAgain);
    protocol.pass();
    QCOMPARE(changes.take(), asksAgain);
    protocol->receiveModuleNAck();
    QCOMPARE(changes.take(), (QStringList {"sentBytes 4", "sentNacks 1"}));
}

void LinkHealthTest::countsBeforeItTells()
{
    HandDrivenProtocol protocol;
    QStringList seen;
    connect(protocol.get(), &CanbusProtocol::notifyClimateInfo, protocol.get(),
            [&] { seen += QString("frames %1").arg(protocol->linkHealth()->figures().receivedFrames); });
    connect(protocol.get(), &CanbusProtocol::onWritPortData, protocol.get(),
            [&] { seen += QString("acks %1").arg(protocol->linkHealth()->figures().sentAcks); });
    protocol.passOver(bytes("9f 02 21 03 05 27 9f 03"));
    QCOMPARE(seen, (QStringList {"frames 1", "acks 1"}));
}

void LinkHealthTest::countsForEachProtocolFromZero()
{
    {
        HandDrivenProtocol first;
        first.passOver(bytes("9f 06 05 05 9f 03"));
        QCOMPARE(first->linkHealth()->figures().receivedAcks, 1U);
    }
    HandDrivenProtocol second;
    QCOMPARE(second->linkHealth()->figures().receivedAcks, 0U);
    QCOMPARE(second->linkHealth(), second.get()->linkHealth());
}

QTEST_GUILESS_MAIN(LinkHealthTest)
#include "tst_linkhealth.moc"
