#include "hexbytes.h"
#include "receivepath.h"

#include <QtTest/QTest>

using namespace canbus;

namespace {

/// Plays the protocol's steps: notes their order and returns what the test has laid down.
struct ScriptedSteps {
    QByteArray &buffer;
    QList<int> starts;
    QList<int> ends;
    bool checkHolds = true;
    QStringList calls = {};
    QByteArray bufferAtCheck = {};

    int onSearchDLE()
    {
        calls += "start";
        return starts.takeFirst();
    }

    int onSearchDLE_ETX(int start)
    {
        calls += QStringLiteral("end from %1").arg(start);
        return ends.takeFirst();
    }

    void onRemoveEscapeFrameHeaders(int start, int end)
    {
        calls += QStringLiteral("unescape %1 to %2").arg(start).arg(end);
    }

    bool checkXOR(int start, int end)
    {
        calls += QStringLiteral("check %1 to %2").arg(start).arg(end);
        bufferAtCheck = buffer;
        return checkHolds;
    }

    void onProcessingFrameData(int start, int end)
    {
        calls += QStringLiteral("take %1 to %2").arg(start).arg(end);
    }

    void onCategoryDataProcessing() { calls += "dispatch"; }
};

QString nameOf(const receive::Markers &markers)
{
    return QStringLiteral("%1%2%3").arg(markers.nack ? "nack" : "", markers.ack ? "ack" : "",
                                        markers.stx ? "stx" : "");
}

} // namespace

class ReceivePathTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void findsTheOpeningMark_data();
    void findsTheOpeningMark();
    void findsTheClosingMark_data();
    void findsTheClosingMark();
    void removesEscapes_data();
    void removesEscapes();
    void comparesTheCheckByte_data();
    void comparesTheCheckByte();
    void takesThePayload_data();
    void takesThePayload();

    void takesNoStepOverAnEmptyBuffer();
    void discardsMoreThan2048Bytes();
    void searches2048Bytes();
    void keepsAnIncompleteFrame();
    void checksWhatTheSecondSearchFinds();
    void removesAFrameWhoseCheckFails();
};

void ReceivePathTest::findsTheOpeningMark_data()
{
    QTest::addColumn<QByteArray>("buffer");
    QTest::addColumn<int>("index");
    QTest::addColumn<QString>("kind");

    QTest::newRow("nothing in an empty buffer") << bytes("") << -1 << "";
    QTest::newRow("an escape alone is no mark") << bytes("9f") << -1 << "";
    QTest::newRow("an escape at the very end is no mark") << bytes("41 42 9f") << -1 << "";
    QTest::newRow("the second bytes alone are no marks") << bytes("02 15 06") << -1 << "";
    QTest::newRow("a data frame") << bytes("9f 02") << 2 << "stx";
    QTest::newRow("an acknowledgement") << bytes("9f 06") << 2 << "ack";
    QTest::newRow("a negative acknowledgement") << bytes("9f 15") << 2 << "nack";
    QTest::newRow("bytes before the mark are passed over") << bytes("00 02 41 9f 02 21") << 5 << "stx";
    QTest::newRow("a pair of unknown type is passed over") << bytes("9f 41 9f 06 05") << 4 << "ack";
    QTest::newRow("a closing mark is passed over") << bytes("9f 03 9f 15") << 4 << "nack";
    QTest::newRow("the second of two escapes opens a frame") << bytes("9f 9f 02 21") << 3 << "stx";
    QTest::newRow("the last of three escapes opens a frame") << bytes("9f 9f 9f 15") << 4 << "nack";
    QTest::newRow("escapes alone open nothing") << bytes("9f 9f 9f") << -1 << "";
    QTest::newRow("the first mark counts") << bytes("9f 15 9f 02 9f 06") << 2 << "nack";
    QTest::newRow("a closing mark alone opens nothing") << bytes("9f 03") << -1 << "";
}

void ReceivePathTest::findsTheOpeningMark()
{
    QFETCH(QByteArray, buffer);
    QFETCH(int, index);
    QFETCH(QString, kind);

    const receive::Start start = receive::findStart(buffer);
    QCOMPARE(start.index, index);
    QCOMPARE(nameOf(start.markers), kind);
}

void ReceivePathTest::findsTheClosingMark_data()
{
    QTest::addColumn<QByteArray>("buffer");
    QTest::addColumn<int>("start");
    QTest::addColumn<int>("index");
    QTest::addColumn<bool>("escapeIsLast");

    QTest::newRow("nothing without a start") << bytes("9f 03 9f") << -1 << -1 << false;
    QTest::newRow("behind the frame") << bytes("9f 02 21 9f 03 41") << 2 << 5 << false;
    QTest::newRow("directly behind the opening mark") << bytes("9f 02 9f 03") << 2 << 4 << false;
    QTest::newRow("at the very beginning") << bytes("9f 03 41") << 0 << 2 << false;
    QTest::newRow("not before the start") << bytes("9f 03 9f 02 21") << 4 << -1 << false;
    QTest::newRow("not across the start") << bytes("9f 03 21") << 1 << -1 << false;
    QTest::newRow("a doubled escape followed by 03 ends a frame")
        << bytes("9f 02 21 9f 9f 03 41 9f 03") << 2 << 6 << false;
    QTest::newRow("other escape pairs are passed over")
        << bytes("9f 02 9f 04 9f 02 9f 03") << 2 << 8 << false;
    QTest::newRow("the first of two ends counts") << bytes("9f 02 21 9f 03 9f 03") << 2 << 5 << false;
    QTest::newRow("03 alone ends nothing") << bytes("9f 02 03 03") << 2 << -1 << false;
    QTest::newRow("an escape at the very end waits") << bytes("9f 02 21 9f") << 2 << -1 << true;
    QTest::newRow("so does the second of two") << bytes("9f 02 21 9f 9f") << 2 << -1 << true;
    QTest::newRow("nothing behind the opening mark") << bytes("9f 02") << 2 << -1 << false;
}

void ReceivePathTest::findsTheClosingMark()
{
    QFETCH(QByteArray, buffer);
    QFETCH(int, start);

    const receive::End end = receive::findEnd(buffer, start);
    QTEST(end.index, "index");
    QTEST(end.escapeIsLast, "escapeIsLast");
}

void ReceivePathTest::removesEscapes_data()
{
    QTest::addColumn<QByteArray>("buffer");
    QTest::addColumn<int>("start");
    QTest::addColumn<int>("end");
    QTest::addColumn<QByteArray>("left");

    QTest::newRow("a pair becomes one")
        << bytes("9f 02 21 9f9f 22 9f 03") << 2 << 8 << bytes("9f 02 21 9f 22 9f 03");
    QTest::newRow("four become two") << bytes("9f9f 9f9f") << 0 << 4 << bytes("9f 9f");
    QTest::newRow("three become two") << bytes("9f9f 9f") << 0 << 3 << bytes("9f 9f");
    QTest::newRow("five become three") << bytes("9f9f 9f9f 9f") << 0 << 5 << bytes("9f 9f 9f");
    QTest::newRow("pairs apart") << bytes("9f9f 01 9f9f 02") << 0 << 6 << bytes("9f 01 9f 02");
    QTest::newRow("a single escape stays") << bytes("41 9f 42 9f 03") << 0 << 5 << bytes("41 9f 42 9f 03");
    QTest::newRow("nothing before the start") << bytes("9f9f 02 9f9f 41") << 3 << 6 << bytes("9f9f 02 9f 41");
    QTest::newRow("the pair across the start loses none") << bytes("9f9f 41") << 1 << 3 << bytes("9f9f 41");
    QTest::newRow("the pair across the end loses one") << bytes("21 9f9f") << 0 << 2 << bytes("21 9f");
    QTest::newRow("without a pair in the frame nothing behind it is touched")
        << bytes("9f 02 21 03 00 22 9f 03 9f9f 41") << 2 << 8 << bytes("9f 02 21 03 00 22 9f 03 9f9f 41");
    QTest::newRow("with one pair the first byte behind the frame is looked at")
        << bytes("9f 02 21 03 00 9f9f bd 9f 03 9f9f 41") << 2 << 10
        << bytes("9f 02 21 03 00 9f bd 9f 03 9f 41");
    QTest::newRow("but not the second") << bytes("9f 02 21 03 00 9f9f bd 9f 03 41 9f9f") << 2 << 10
                                        << bytes("9f 02 21 03 00 9f bd 9f 03 41 9f9f");
    QTest::newRow("with two pairs the second too") << bytes("9f 02 21 03 00 9f9f 9f9f 22 9f 03 41 9f9f") << 2
                                                   << 12 << bytes("9f 02 21 03 00 9f 9f 22 9f 03 41 9f");
    QTest::newRow("a pair that goes behind the frame moves the bound no further")
        << bytes("9f9f 03 9f9f 9f9f") << 0 << 3 << bytes("9f 03 9f 9f9f");
    QTest::newRow("nothing without a start") << bytes("9f9f") << -1 << 2 << bytes("9f9f");
    QTest::newRow("nothing without an end") << bytes("9f9f") << 0 << -1 << bytes("9f9f");
    QTest::newRow("an end beyond the buffer") << bytes("9f9f 41 9f") << 0 << 9 << bytes("9f 41 9f");
}

void ReceivePathTest::removesEscapes()
{
    QFETCH(QByteArray, buffer);
    QFETCH(int, start);
    QFETCH(int, end);
    QFETCH(QByteArray, left);

    receive::unescape(buffer, start, end);
    QCOMPARE(buffer.toHex(), left.toHex());
}

void ReceivePathTest::comparesTheCheckByte_data()
{
    QTest::addColumn<QByteArray>("buffer");
    QTest::addColumn<int>("start");
    QTest::addColumn<int>("end");
    QTest::addColumn<bool>("holds");
    QTest::addColumn<int>("computed");

    QTest::newRow("a data frame") << bytes("9f 02 21 01 00 00 00 20 9f 03") << 2 << 10 << true << 0x20;
    QTest::newRow("a wrong check byte") << bytes("9f 02 21 01 00 00 00 21 9f 03") << 2 << 10 << false << 0x20;
    QTest::newRow("an acknowledgement's second id") << bytes("9f 06 05 05 9f 03") << 2 << 6 << true << 0x05;
    QTest::newRow("two ids that differ") << bytes("9f 06 05 04 9f 03") << 2 << 6 << false << 0x05;
    QTest::newRow("bytes with the high bit set")
        << bytes("9f 02 ff 80 9f e0 9f 03") << 2 << 8 << true << 0xe0;
    QTest::newRow("bytes around the frame do not count")
        << bytes("41 9f 02 21 01 20 9f 03 55 66") << 3 << 8 << true << 0x20;
    QTest::newRow("a check byte alone covers nothing and must be 0")
        << bytes("9f 02 00 9f 03") << 2 << 5 << true << 0x00;
    QTest::newRow("a check byte alone other than 0") << bytes("9f 02 01 9f 03") << 2 << 5 << false << 0x00;
    QTest::newRow("an empty frame is compared with its opening mark")
        << bytes("9f 02 9f 03") << 2 << 4 << false << 0x00;
    QTest::newRow("three bytes are too few") << bytes("00 9f 03") << 0 << 3 << false << 0x00;
    QTest::newRow("four bytes are enough") << bytes("00 00 9f 03") << 0 << 4 << true << 0x00;
    QTest::newRow("a check byte at the very beginning") << bytes("00 9f 03 41") << 0 << 3 << true << 0x00;
    QTest::newRow("no start") << bytes("21 21 9f 03") << -1 << 4 << false << 0x00;
    QTest::newRow("no end") << bytes("21 21 9f 03") << 0 << -1 << false << 0x00;
}

void ReceivePathTest::comparesTheCheckByte()
{
    QFETCH(QByteArray, buffer);
    QFETCH(int, start);
    QFETCH(int, end);

    const receive::Check check = receive::checkFrame(buffer, start, end);
    QTEST(check.holds, "holds");
    QTEST(int(check.computed), "computed");
}

void ReceivePathTest::takesThePayload_data()
{
    QTest::addColumn<QByteArray>("rest");
    QTest::addColumn<int>("checkByte");
    QTest::addColumn<QByteArray>("payload");
    QTest::addColumn<QByteArray>("left");

    QTest::newRow("what comes before the check byte")
        << bytes("01 02 22 9f 03") << 0x22 << bytes("01 02") << bytes("22 9f 03");
    QTest::newRow("none") << bytes("22 9f 03") << 0x22 << bytes("") << bytes("22 9f 03");
    QTest::newRow("the check byte's value within the payload")
        << bytes("22 9f 22 9f 03") << 0x22 << bytes("22 9f") << bytes("22 9f 03");
    QTest::newRow("another byte in the check byte's place is payload")
        << bytes("01 23 9f 03") << 0x22 << bytes("01 23 9f 03") << bytes("");
    QTest::newRow("two bytes are payload") << bytes("9f 03") << 0x22 << bytes("9f 03") << bytes("");
    QTest::newRow("two bytes are payload also when the check byte is 0")
        << bytes("9f 03") << 0x00 << bytes("9f 03") << bytes("");
    QTest::newRow("one byte is payload") << bytes("03") << 0x22 << bytes("03") << bytes("");
    QTest::newRow("nothing at all") << bytes("") << 0x22 << bytes("") << bytes("");
    QTest::newRow("a check byte with the high bit set")
        << bytes("9e bd 9f 03") << 0xbd << bytes("9e") << bytes("bd 9f 03");
    QTest::newRow("an end without its 03 is payload")
        << bytes("01 22 9f 04") << 0x22 << bytes("01 22 9f 04") << bytes("");
    QTest::newRow("an end without its escape is payload")
        << bytes("01 22 9e 03") << 0x22 << bytes("01 22 9e 03") << bytes("");
}

void ReceivePathTest::takesThePayload()
{
    QFETCH(QByteArray, rest);
    QFETCH(int, checkByte);
    QFETCH(QByteArray, payload);
    QFETCH(QByteArray, left);

    const int size = receive::payloadSize(rest, 0, quint8(checkByte));
    QCOMPARE(rest.left(size).toHex(), payload.toHex());
    QCOMPARE(rest.mid(size).toHex(), left.toHex());
}

void ReceivePathTest::takesNoStepOverAnEmptyBuffer()
{
    QByteArray buffer;
    ScriptedSteps steps {buffer, {}, {}};
    const receive::Pass pass = receive::runPass(buffer, steps);
    QCOMPARE(steps.calls, QStringList());
    QCOMPARE(pass.end, receive::Pass::Waits);
    QCOMPARE(pass.discarded, 0);
}

void ReceivePathTest::discardsMoreThan2048Bytes()
{
    QByteArray buffer = QByteArray(2041, 'A') + bytes("9f 02 21 08 00 29 9f 03");
    QCOMPARE(buffer.size(), 2049);
    ScriptedSteps steps {buffer, {}, {}};
    const receive::Pass pass = receive::runPass(buffer, steps);
    QCOMPARE(steps.calls, QStringList());
    QCOMPARE(buffer, QByteArray());
    QCOMPARE(pass.end, receive::Pass::Waits);
    QCOMPARE(pass.discarded, 2049);
    QCOMPARE(pass.skipped, 0);
}

void ReceivePathTest::searches2048Bytes()
{
    QByteArray buffer(2048, 'A');
    ScriptedSteps steps {buffer, {-1}, {-1}};
    const receive::Pass pass = receive::runPass(buffer, steps);
    QCOMPARE(steps.calls, (QStringList {"start", "end from -1"}));
    QCOMPARE(buffer, QByteArray(2048, 'A'));
    QCOMPARE(pass.discarded, 0);
    QCOMPARE(pass.skipped, 0);
}

void ReceivePathTest::keepsAnIncompleteFrame()
{
    QByteArray buffer = bytes("41 9f 02 21");
    ScriptedSteps steps {buffer, {3}, {-1}};
    const receive::Pass pass = receive::runPass(buffer, steps);
    QCOMPARE(pass.end, receive::Pass::Waits);
    QCOMPARE(pass.skipped, 0);
    QCOMPARE(steps.calls, (QStringList {"start", "end from 3"}));
    QCOMPARE(buffer.toHex(), bytes("41 9f 02 21").toHex());
}

void ReceivePathTest::checksWhatTheSecondSearchFinds()
{
    QByteArray buffer = bytes("00 01 02 03 04 05 06 07 08 09 0a");
    ScriptedSteps steps {buffer, {2, 3}, {10, 9}};
    const receive::Pass pass = receive::runPass(buffer, steps);
    QCOMPARE(pass.end, receive::Pass::Taken);
    QCOMPARE(pass.skipped, 1);
    QCOMPARE(pass.discarded, 0);
    QCOMPARE(steps.calls,
             (QStringList {"start", "end from 2", "unescape 2 to 10", "start", "end from 3", "check 3 to 9",
                           "take 3 to 9", "dispatch"}));
    QCOMPARE(steps.bufferAtCheck.toHex(), bytes("00 01 02 03 04 05 06 07 08 09 0a").toHex());
    QCOMPARE(buffer.toHex(), bytes("09 0a").toHex());
}

void ReceivePathTest::removesAFrameWhoseCheckFails()
{
    QByteArray buffer = bytes("00 01 02 03 04 05 06 07");
    ScriptedSteps steps {buffer, {4, 4}, {6, 5}, false};
    const receive::Pass pass = receive::runPass(buffer, steps);
    QCOMPARE(pass.end, receive::Pass::BadCheck);
    QCOMPARE(pass.skipped, 2);
    QCOMPARE(steps.calls,
             (QStringList {"start", "end from 4", "unescape 4 to 6", "start", "end from 4", "check 4 to 5"}));
    QCOMPARE(buffer.toHex(), bytes("05 06 07").toHex());
}

QTEST_GUILESS_MAIN(ReceivePathTest)
#include "tst_receivepath.moc"
