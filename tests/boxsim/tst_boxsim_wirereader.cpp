#include "boxsim/link/wirereader.h"

#include "hexbytes.h"

#include <QtTest/QTest>

using boxsim::WireFrame;
using boxsim::WireReader;

namespace {

QString text(const WireFrame &frame)
{
    const QString id = frame.id == boxsim::kNoId ? QStringLiteral("none") : QString::number(frame.id, 16);
    switch (frame.kind) {
    case WireFrame::Kind::Data:
        return QStringLiteral("data id %1 tp %2 mod %3 [%4]")
            .arg(id, QString::number(frame.tp, 16), QString::number(frame.mod, 16),
                 QString::fromLatin1(frame.data.toHex(' ')));
    case WireFrame::Kind::Ack:
        return QStringLiteral("ack ") + id;
    case WireFrame::Kind::Nack:
        return QStringLiteral("nack ") + id;
    case WireFrame::Kind::Bad:
        break;
    }
    return QStringLiteral("bad [%1] %2").arg(QString::fromLatin1(frame.bytes.toHex(' ')), frame.reason);
}

QStringList texts(const QVector<WireFrame> &frames)
{
    QStringList list;
    for (const WireFrame &frame : frames)
        list.append(text(frame));
    return list;
}

} // namespace

class TestBoxsimWireReader : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void readsWhatIsOnTheWire_data();
    void readsWhatIsOnTheWire();
    void readsTheSameHoweverTheBytesAreCut_data() { readsWhatIsOnTheWire_data(); }
    void readsTheSameHoweverTheBytesAreCut();
    void keepsTheBytesOfAFrameAsTheyCame();
    void keepsAnUnfinishedFrameToItself();
    void givesUpAFrameWithoutEnd();
    void handsOutNoiseBeforeItGrowsWithoutBound();
};

void TestBoxsimWireReader::readsWhatIsOnTheWire_data()
{
    QTest::addColumn<QByteArray>("wire");
    QTest::addColumn<QStringList>("frames");

    QTest::newRow("a connect request")
        << bytes("9f 02 21 01 00 00 00 20 9f 03") << QStringList {"data id 21 tp 1 mod 0 [00 00]"};
    QTest::newRow("a frame without data")
        << bytes("9f 02 21 97 01 b7 9f 03") << QStringList {"data id 21 tp 97 mod 1 []"};
    QTest::newRow("9F in the data") << bytes("9f 02 21 93 00 1b 01 9f9f 37 9f 03")
                                    << QStringList {"data id 21 tp 93 mod 0 [1b 01 9f]"};
    QTest::newRow("9F as the id") << bytes("9f 02 9f9f 97 00 01 09 9f 03")
                                  << QStringList {"data id 9f tp 97 mod 0 [01]"};
    QTest::newRow("9F as the check byte")
        << bytes("9f 02 09 97 00 01 9f9f 9f 03") << QStringList {"data id 9 tp 97 mod 0 [01]"};
    QTest::newRow("9F as TP and MOD")
        << bytes("9f 02 21 9f9f 9f9f 07 26 9f 03") << QStringList {"data id 21 tp 9f mod 9f [07]"};
    QTest::newRow("9F and 03 one after the other in the data")
        << bytes("9f 02 21 91 00 9f9f 03 05 29 9f 03") << QStringList {"data id 21 tp 91 mod 0 [9f 03 05]"};
    QTest::newRow("9F and 02 one after the other in the data")
        << bytes("9f 02 21 91 00 9f9f 02 05 28 9f 03") << QStringList {"data id 21 tp 91 mod 0 [9f 02 05]"};
    QTest::newRow("three 9F one after the other in the data")
        << bytes("9f 02 21 91 00 9f9f 9f9f 9f9f 2f 9f 03")
        << QStringList {"data id 21 tp 91 mod 0 [9f 9f 9f]"};
    QTest::newRow("two frames one after the other")
        << bytes("9f 02 21 01 00 00 00 20 9f 03  9f 02 22 97 00 00 b5 9f 03")
        << QStringList {"data id 21 tp 1 mod 0 [00 00]", "data id 22 tp 97 mod 0 [00]"};

    QTest::newRow("an acknowledgement") << bytes("9f 06 05 05 9f 03") << QStringList {"ack 5"};
    QTest::newRow("the acknowledgement of id 9F") << bytes("9f 06 9f 9f 9f 03") << QStringList {"ack 9f"};
    QTest::newRow("the acknowledgement of id 03") << bytes("9f 06 03 03 9f 03") << QStringList {"ack 3"};
    QTest::newRow("an acknowledgement without an id") << bytes("9f 06 9f 03") << QStringList {"ack none"};
    QTest::newRow("a negative acknowledgement") << bytes("9f 15 21 21 9f 03") << QStringList {"nack 21"};
    QTest::newRow("a negative acknowledgement of id 9F")
        << bytes("9f 15 9f 9f 9f 03") << QStringList {"nack 9f"};
    QTest::newRow("a negative acknowledgement without an id")
        << bytes("9f 15 9f 03") << QStringList {"nack none"};
    QTest::newRow("answers and a frame one after the other")
        << bytes("9f 15 9f 03 9f 06 9f 9f 9f 03 9f 02 22 97 00 00 b5 9f 03 9f 06 22 22 9f 03")
        << QStringList {"nack none", "ack 9f", "data id 22 tp 97 mod 0 [00]", "ack 22"};

    QTest::newRow("a wrong check byte")
        << bytes("9f 02 21 01 00 00 00 21 9f 03")
        << QStringList {"bad [9f 02 21 01 00 00 00 21 9f 03] the check byte is 21, not 20"};
    QTest::newRow("a frame behind one with a wrong check byte")
        << bytes("9f 02 21 01 00 00 00 21 9f 03 9f 06 05 05 9f 03")
        << QStringList {"bad [9f 02 21 01 00 00 00 21 9f 03] the check byte is 21, not 20", "ack 5"};
    QTest::newRow("a frame that is too short")
        << bytes("9f 02 21 01 20 9f 03")
        << QStringList {"bad [9f 02 21 01 20 9f 03] a frame of 3 bytes, shorter than id, TP, MOD, check"};
    QTest::newRow("a single 9F in the data")
        << bytes("9f 02 21 93 00 9f 44 37 9f 03 9f 06 05 05 9f 03")
        << QStringList {"bad [9f 02 21 93 00 9f 44] a single DLE before 44 in a frame",
                        "bad [37 9f 03] bytes outside a frame", "ack 5"};
    QTest::newRow("a frame that another one cuts off")
        << bytes("9f 02 21 01 00 9f 02 22 97 00 00 b5 9f 03")
        << QStringList {"bad [9f 02 21 01 00] a single DLE before 02 in a frame",
                        "data id 22 tp 97 mod 0 [00]"};
    QTest::newRow("a frame that an acknowledgement cuts off")
        << bytes("9f 02 21 01 00 9f 06 05 05 9f 03")
        << QStringList {"bad [9f 02 21 01 00] a single DLE before 06 in a frame", "ack 5"};
    QTest::newRow("an answer whose ids differ")
        << bytes("9f 06 05 06 9f 03 9f 06 05 05 9f 03")
        << QStringList {"bad [9f 06 05 06] an answer that is not id, id, DLE, ETX",
                        "bad [9f 03] bytes outside a frame", "ack 5"};
    QTest::newRow("an answer that a frame cuts off behind the first id")
        << bytes("9f 06 05 9f 02 22 97 00 00 b5 9f 03")
        << QStringList {"bad [9f 06 05] an answer that is not id, id, DLE, ETX",
                        "data id 22 tp 97 mod 0 [00]"};
    QTest::newRow("an answer that a frame cuts off before its id")
        << bytes("9f 06 9f 02 22 97 00 00 b5 9f 03")
        << QStringList {"bad [9f 06] an answer that is not id, id, DLE, ETX", "data id 22 tp 97 mod 0 [00]"};
    QTest::newRow("an answer that a frame cuts off behind its ids")
        << bytes("9f 06 05 05 9f 02 22 97 00 00 b5 9f 03")
        << QStringList {"bad [9f 06 05 05] an answer that is not id, id, DLE, ETX",
                        "data id 22 tp 97 mod 0 [00]"};
    QTest::newRow("an answer with more behind its ids")
        << bytes("9f 06 05 05 05 9f 06 07 07 9f 03")
        << QStringList {"bad [9f 06 05 05 05] an answer that is not id, id, DLE, ETX", "ack 7"};
    QTest::newRow("noise before a frame")
        << bytes("37 31 9f 9f 02 22 97 00 00 b5 9f 03")
        << QStringList {"bad [37 31 9f] bytes outside a frame", "data id 22 tp 97 mod 0 [00]"};
}

void TestBoxsimWireReader::readsWhatIsOnTheWire()
{
    QFETCH(QByteArray, wire);
    QFETCH(QStringList, frames);

    QCOMPARE(texts(WireReader().feed(wire)), frames);
}

void TestBoxsimWireReader::readsTheSameHoweverTheBytesAreCut()
{
    QFETCH(QByteArray, wire);
    QFETCH(QStringList, frames);

    for (int cut = 0; cut <= wire.size(); ++cut) {
        WireReader reader;
        const QVector<WireFrame> first = reader.feed(wire.left(cut));
        QCOMPARE(texts(first + reader.feed(wire.mid(cut))), frames);
    }
    WireReader reader;
    QVector<WireFrame> single;
    for (const char byte : wire)
        single += reader.feed(QByteArray(1, byte));
    QCOMPARE(texts(single), frames);
}

void TestBoxsimWireReader::keepsTheBytesOfAFrameAsTheyCame()
{
    const QVector<WireFrame> frames =
        WireReader().feed(bytes("00 9f 02 9f9f 97 00 01 09 9f 03 9f 06 9f 9f 9f 03"));

    QCOMPARE(frames.size(), 3);
    QCOMPARE(frames.at(0).bytes, bytes("00"));
    QCOMPARE(frames.at(1).bytes, bytes("9f 02 9f9f 97 00 01 09 9f 03"));
    QCOMPARE(frames.at(2).bytes, bytes("9f 06 9f 9f 9f 03"));
}

void TestBoxsimWireReader::keepsAnUnfinishedFrameToItself()
{
    WireReader reader;

    QVERIFY(reader.feed(bytes("9f 02 21 01 00 00 00 20 9f")).isEmpty());
    QCOMPARE(texts(reader.feed(bytes("03"))), QStringList {"data id 21 tp 1 mod 0 [00 00]"});
}

void TestBoxsimWireReader::givesUpAFrameWithoutEnd()
{
    WireReader reader;
    const QVector<WireFrame> frames = reader.feed(bytes("9f 02") + QByteArray(4094, '\x01'));

    QCOMPARE(frames.size(), 1);
    QCOMPARE(frames.at(0).kind, WireFrame::Kind::Bad);
    QCOMPARE(frames.at(0).bytes.size(), 4096);
    QCOMPARE(frames.at(0).reason, QStringLiteral("no end of frame within 4096 bytes"));
    QCOMPARE(texts(reader.feed(bytes("9f 06 05 05 9f 03"))), QStringList {"ack 5"});
}

void TestBoxsimWireReader::handsOutNoiseBeforeItGrowsWithoutBound()
{
    WireReader reader;

    QVERIFY(reader.feed(QByteArray(4095, '\x55')).isEmpty());
    const QVector<WireFrame> frames = reader.feed(bytes("55"));
    QCOMPARE(frames.size(), 1);
    QCOMPARE(frames.at(0).bytes.size(), 4096);
    QCOMPARE(frames.at(0).reason, QStringLiteral("bytes outside a frame"));
}

QTEST_GUILESS_MAIN(TestBoxsimWireReader)
#include "tst_boxsim_wirereader.moc"
