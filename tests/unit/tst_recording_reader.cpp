#include "pcapngbytes.h"
#include "recording/recording.h"

#include <QtTest/QTest>

using canbus::recording::Block;
using canbus::recording::Direction;
using canbus::recording::Recording;

namespace {

struct Parsed {
    explicit Parsed(const QByteArray &file)
        : isWhole(canbus::recording::parse(file, &recording, &error))
    {
    }
    int count() const { return recording.blocks.size(); }
    const Block &block(int i) const { return recording.blocks.at(i); }
    Recording recording;
    QString error;
    bool isWhole;
};

void columns()
{
    QTest::addColumn<QByteArray>("file");
    QTest::addColumn<QString>("error");
}

void row(const char *name, std::initializer_list<const char *> parts, const char *error)
{
    QTest::newRow(name) << joined(parts) << QString(error);
}

void compareErrors()
{
    QFETCH(QByteArray, file);
    const Parsed parsed(file);
    QTEST(parsed.error, "error");
    QVERIFY(!parsed.isWhole);
    QCOMPARE(parsed.count(), 0);
}

} // namespace

class tst_recording_reader : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void readsBigEndianFiles();
    void readsEverySectionWithItsOwnByteOrderAndInterfaces();
    void readsTimesOfAnyResolution_data();
    void readsTimesOfAnyResolution();
    void simplePacketsHaveTheTimeOfTheOneBefore();
    void simplePacketsEndWhereTheInterfaceCutsThem();
    void readsObsoletePackets();
    void packetsWithoutADirectionCountAsReceived();
    void passesOverBlocksOfOtherKinds();
    void theFirstCommentIsTheRecordings();
    void refusesWhatIsNoRecording_data();
    void refusesWhatIsNoRecording();
    void refusesAWrongSectionOrInterface_data();
    void refusesAWrongSectionOrInterface();
    void refusesWrongLengths_data();
    void refusesWrongLengths();
    void refusesAWrongPacket_data();
    void refusesAWrongPacket();
    void refusesOptionsThatDoNotFit_data();
    void refusesOptionsThatDoNotFit();
    void keepsWhatStandsBeforeAFault();
    void everyPrefixGivesItsWholeBlocksOrAnError();
    void everyByteMayBeWrong();
};

void tst_recording_reader::readsBigEndianFiles()
{
    const Parsed parsed(bytes("0a0d0d0a 00000028 1a2b3c4d 0001 0000 ffffffffffffffff"
                              "0001 0005 6120626f78 000000 00000028" // a box; no end of options
                              "00000001 00000014 0093 0000 00000000 00000014"
                              "00000006 0000002c 00000000 00060a24 181e4000 00000002 00000002 9f02 0000"
                              "0002 0004 00000002 0000002c"));
    QCOMPARE(parsed.error, QString());
    QVERIFY(parsed.isWhole);
    QCOMPARE(parsed.recording.comment, QStringLiteral("a box"));
    QCOMPARE(parsed.count(), 1);
    QCOMPARE(parsed.block(0).direction, Direction::Sent);
    QCOMPARE(parsed.block(0).timeUs, 1700000000000000);
    QCOMPARE(parsed.block(0).bytes, bytes("9f02"));
}

void tst_recording_reader::readsEverySectionWithItsOwnByteOrderAndInterfaces()
{
    const Parsed parsed(joined({
        kSection,
        kInterface,
        "01000000 20000000 9300 0000 00000000 0900 0100 03 000000 0000 0000 20000000", // milliseconds
        "06000000 24000000 01000000 00000000 07000000 01000000 01000000 aa000000 24000000",
        "0a0d0d0a 0000001c 1a2b3c4d 0001 0002 ffffffffffffffff 0000001c",              // big endian
        "00000001 00000020 0093 0000 00000000 0009 0001 00 000000 0000 0000 00000020", // seconds
        "00000006 00000024 00000000 00000000 00000009 00000001 00000001 bb000000 00000024",
        kSection,
        kInterface,
        kSent,
    }));
    QCOMPARE(parsed.error, QString());
    QCOMPARE(parsed.count(), 3);
    QCOMPARE(parsed.block(0).timeUs, 7000);
    QCOMPARE(parsed.block(0).bytes, bytes("aa"));
    QCOMPARE(parsed.block(1).timeUs, 9000000);
    QCOMPARE(parsed.block(1).bytes, bytes("bb"));
    QCOMPARE(parsed.block(2).timeUs, 1700000000000010);
    QCOMPARE(parsed.block(2).direction, Direction::Sent);
}

void tst_recording_reader::readsTimesOfAnyResolution_data()
{
    QTest::addColumn<QByteArray>("interface");
    QTest::addColumn<QByteArray>("time");
    QTest::addColumn<qint64>("us");
    const QByteArray none = bytes("01000000 14000000 9300 0000 00000000 14000000");
    const auto withResolution = [](const char *option) {
        return bytes("01000000 1c000000 9300 0000 00000000 0900 0100") + bytes(option) + bytes("1c000000");
    };
    const auto withOffset = [](const char *seconds) {
        return bytes("01000000 20000000 9300 0000 00000000 0e00 0800") + bytes(seconds) + bytes("20000000");
    };
    QTest::newRow("microseconds without the option") << none << bytes("00000000 05000000") << qint64(5);
    QTest::newRow("milliseconds") << withResolution("03000000") << bytes("00000000 05000000") << qint64(5000);
    QTest::newRow("nanoseconds") << withResolution("09000000") << bytes("00000000 6f170000") << qint64(5);
    QTest::newRow("milliseconds beyond every clock")
        << withResolution("03000000") << bytes("ffffffff ffffffff") << qint64(2305843009213693951);
    QTest::newRow("seconds that would wrap")
        << withResolution("00000000") << bytes("00001000 00000000") << qint64(2305843009213693951);
    QTest::newRow("a power of ten below every clock")
        << withResolution("7f000000") << bytes("ffffffff ffffffff") << qint64(0);
    QTest::newRow("eighths of a second")
        << withResolution("83000000") << bytes("00000000 0c000000") << qint64(1500000);
    QTest::newRow("2^-32 s") << withResolution("a0000000") << bytes("01000000 00000080") << qint64(1500000);
    QTest::newRow("2^-40 s") << withResolution("a8000000") << bytes("00010000 00000080")
                             << qint64(1001953); // 1953.125
    QTest::newRow("2^-127 s") << withResolution("ff000000") << bytes("ffffffff ffffffff") << qint64(0);
    QTest::newRow("whole seconds as a power of two beyond every clock")
        << withResolution("80000000") << bytes("ffffffff ffffffff") << qint64(2305843009213693951);
    QTest::newRow("an offset") << withOffset("0200000000000000") << bytes("00000000 05000000")
                               << qint64(2000005);
    QTest::newRow("an offset before the beginning")
        << withOffset("ffffffffffffffff") << bytes("00000000 05000000") << qint64(0);
    QTest::newRow("an offset beyond every clock")
        << withOffset("ffffffffffffff7f") << bytes("ffffffff ffffffff") << qint64(2305843009213693951);
    QTest::newRow("an offset before every clock")
        << withOffset("0000000000000080") << bytes("ffffffff ffffffff") << qint64(693951);
}

void tst_recording_reader::readsTimesOfAnyResolution()
{
    QFETCH(QByteArray, interface);
    QFETCH(QByteArray, time);
    QFETCH(qint64, us);
    const Parsed parsed(bytes(kSection) + interface + bytes("06000000 24000000 00000000") + time
                        + bytes("01000000 01000000 aa000000 24000000"));
    QCOMPARE(parsed.error, QString());
    QCOMPARE(parsed.count(), 1);
    QCOMPARE(parsed.block(0).timeUs, us);
}

void tst_recording_reader::simplePacketsHaveTheTimeOfTheOneBefore()
{
    const Parsed parsed(joined({kSection, kInterface, "03000000 14000000 01000000 aa000000 14000000", kSent,
                                "03000000 14000000 02000000 bbbb0000 14000000"}));
    QCOMPARE(parsed.error, QString());
    QCOMPARE(parsed.count(), 3);
    QCOMPARE(parsed.block(0).timeUs, 0);
    QCOMPARE(parsed.block(0).bytes, bytes("aa"));
    QCOMPARE(parsed.block(2).timeUs, 1700000000000010);
    QCOMPARE(parsed.block(2).bytes, bytes("bbbb"));
    QCOMPARE(parsed.block(2).direction, Direction::Received);
}

void tst_recording_reader::simplePacketsEndWhereTheInterfaceCutsThem()
{
    const Parsed parsed(joined({kSection, "01000000 14000000 9300 0000 02000000 14000000",
                                "03000000 14000000 05000000 aabb0000 14000000"}));
    QCOMPARE(parsed.error, QString());
    QCOMPARE(parsed.count(), 1);
    QCOMPARE(parsed.block(0).bytes, bytes("aabb"));
}

void tst_recording_reader::readsObsoletePackets()
{
    const Parsed parsed(joined({kSection, kInterface,
                                "02000000 2c000000 0000 0700 240a0600 00401e18 01000000 01000000 aa000000"
                                "0200 0400 02000000 2c000000"}));
    QCOMPARE(parsed.error, QString());
    QCOMPARE(parsed.count(), 1);
    QCOMPARE(parsed.block(0).direction, Direction::Sent);
    QCOMPARE(parsed.block(0).timeUs, 1700000000000000);
    QCOMPARE(parsed.block(0).bytes, bytes("aa"));
}

void tst_recording_reader::packetsWithoutADirectionCountAsReceived()
{
    const Parsed parsed(
        joined({kSection, kInterface,
                "06000000 24000000 00000000 00000000 07000000 01000000 01000000 aa000000 24000000",
                "06000000 2c000000 00000000 00000000 07000000 01000000 01000000 bb000000"
                "0200 0400 03000000 2c000000"}));
    QCOMPARE(parsed.count(), 2);
    QCOMPARE(parsed.block(0).direction, Direction::Received);
    QCOMPARE(parsed.block(1).direction, Direction::Received);
}

void tst_recording_reader::passesOverBlocksOfOtherKinds()
{
    const Parsed parsed(joined({kSection, "05000000 0c000000 0c000000", kInterface,
                                "ffffffff 10000000 06000000 10000000", kSent, "04000000 0c000000 0c000000"}));
    QCOMPARE(parsed.error, QString());
    QCOMPARE(parsed.count(), 1);
    QCOMPARE(parsed.block(0).bytes, bytes("9f0621219f03"));
}

void tst_recording_reader::theFirstCommentIsTheRecordings()
{
    const Parsed parsed(joined({kSection,
                                "0a0d0d0a 28000000 4d3c2b1a 0100 0000 ffffffffffffffff"
                                "0100 0500 6c61746572 000000 28000000"}));
    QCOMPARE(parsed.error, QString());
    QCOMPARE(parsed.recording.comment, QStringLiteral("on then"));
}

void tst_recording_reader::refusesWhatIsNoRecording_data()
{
    columns();
    const char *const noPcapng = "no pcapng file";
    const char *const classic = "a classic pcap file: convert it with editcap -F pcapng";
    row("empty", {}, "empty: a recording is a pcapng file");
    row("a text", {"68656c6c6f20776f726c64"}, noPcapng);
    row("one byte of a text", {"68"}, noPcapng);
    row("classic, little endian", {"d4c3b2a1 02000400"}, classic);
    row("classic, big endian", {"a1b2c3d4 00020004"}, classic);
    row("classic with nanoseconds", {"4d3cb2a1 02000400"}, classic);
    row("classic with nanoseconds, big endian", {"a1b23c4d 00020004"}, classic);
}

void tst_recording_reader::refusesWhatIsNoRecording()
{
    compareErrors();
}

void tst_recording_reader::refusesAWrongSectionOrInterface_data()
{
    columns();
    row("no byte order", {"0a0d0d0a 1c000000 11223344 0100 0000 ffffffffffffffff 1c000000"},
        "the block at byte 0 names no byte order that there is");
    row("another version", {"0a0d0d0a 1c000000 4d3c2b1a 0200 0000 ffffffffffffffff 1c000000"},
        "the block at byte 0 is of pcapng version 2: only 1 is known");
    row("a section shorter than its fields", {"0a0d0d0a 18000000 4d3c2b1a 0100 0000 ffffffff 18000000"},
        "the block at byte 0 has an impossible length, 24");
    row("Ethernet", {kSection, "01000000 14000000 0100 0000 00000000 14000000"},
        "the block at byte 68 is of link type 1: a recording of this line is of type 147, USER0");
    row("an interface shorter than its fields", {kSection, "01000000 10000000 9300 0000 10000000"},
        "the block at byte 68 has an impossible length, 16");
}

void tst_recording_reader::refusesAWrongSectionOrInterface()
{
    compareErrors();
}

void tst_recording_reader::refusesWrongLengths_data()
{
    columns();
    row("a length of 0", {kSection, kInterface, "ff000000 00000000 00000000"},
        "the block at byte 116 has an impossible length, 0");
    row("a length that is no multiple of four", {kSection, kInterface, "ff000000 0d000000 00 0d000000"},
        "the block at byte 116 has an impossible length, 13");
    row("a length of 4 GiB", {kSection, kInterface, "ff000000 fcffffff 00000000"},
        "the block at byte 116 has an impossible length, 4294967292");
    row("a length just above the limit", {kSection, kInterface, "ff000000 04000001 00000000"},
        "the block at byte 116 has an impossible length, 16777220");
    row("a length at the limit", {kSection, kInterface, "ff000000 00000001 00000000"},
        "cut in the middle of the block at byte 116");
    row("two lengths", {kSection, kInterface, "ff000000 10000000 00000000 14000000"},
        "the block at byte 116 contradicts itself: 16 bytes at its start, 20 at its end");
    row("a block whose length is missing", {kSection, "06000000"},
        "cut in the middle of the block at byte 68");
}

void tst_recording_reader::refusesWrongLengths()
{
    compareErrors();
}

void tst_recording_reader::refusesAWrongPacket_data()
{
    columns();
    row("a packet shorter than its fields",
        {kSection, kInterface, "06000000 1c000000 00000000 00000000 00000000 00000000 1c000000"},
        "the block at byte 116 has an impossible length, 28");
    row("a simple packet shorter than its fields", {kSection, kInterface, "03000000 0c000000 0c000000"},
        "the block at byte 116 has an impossible length, 12");
    row("more data than the packet",
        {kSection, kInterface,
         "06000000 24000000 00000000 00000000 07000000 05000000 05000000 aa000000 24000000"},
        "the block at byte 116 contradicts itself: 5 bytes of data do not fit into it");
    row("data of 4 GiB",
        {kSection, kInterface,
         "06000000 24000000 00000000 00000000 07000000 ffffffff ffffffff aa000000 24000000"},
        "the block at byte 116 contradicts itself: 4294967295 bytes of data do not fit into it");
    row("more data than the simple packet",
        {kSection, kInterface, "03000000 14000000 05000000 aa000000 14000000"},
        "the block at byte 116 contradicts itself: 5 bytes of data do not fit into it");
    row("an interface that is not there",
        {kSection, kInterface,
         "06000000 24000000 01000000 00000000 07000000 01000000 01000000 aa000000 24000000"},
        "the block at byte 116 names interface 1: there is none");
    row("a simple packet before every interface", {kSection, "03000000 14000000 01000000 aa000000 14000000"},
        "the block at byte 68 names interface 0: there is none");
    row("the interface of the section before",
        {kSection, kInterface, "0a0d0d0a 1c000000 4d3c2b1a 0100 0000 ffffffffffffffff 1c000000", kSent},
        "the block at byte 144 names interface 0: there is none");
}

void tst_recording_reader::refusesAWrongPacket()
{
    compareErrors();
}

void tst_recording_reader::refusesOptionsThatDoNotFit_data()
{
    columns();
    row("an option that is longer than its packet",
        {kSection, kInterface,
         "06000000 2c000000 00000000 00000000 07000000 01000000 01000000 aa000000"
         "0200 0500 01000000 2c000000"},
        "the block at byte 116 has an option that is longer than the block");
    row("an option that is longer than its interface",
        {kSection, "01000000 1c000000 9300 0000 00000000 0900 ffff 06000000 1c000000"},
        "the block at byte 68 has an option that is longer than the block");
    row("an option that is longer than its section",
        {"0a0d0d0a 20000000 4d3c2b1a 0100 0000 ffffffffffffffff 0100 0100 20000000"},
        "the block at byte 0 has an option that is longer than the block");
}

void tst_recording_reader::refusesOptionsThatDoNotFit()
{
    compareErrors();
}

void tst_recording_reader::keepsWhatStandsBeforeAFault()
{
    const Parsed parsed(joined({kSection, kInterface, kReceived, "06000000 30000000 00000000"}));
    QVERIFY(!parsed.isWhole);
    QCOMPARE(parsed.error, QStringLiteral("cut in the middle of the block at byte 172"));
    QCOMPARE(parsed.recording.comment, QStringLiteral("on then"));
    QCOMPARE(parsed.count(), 1);
    QCOMPARE(parsed.block(0).bytes, bytes("9f022101010001209f03"));
}

void tst_recording_reader::everyPrefixGivesItsWholeBlocksOrAnError()
{
    const QByteArray file = joined({kSection, kInterface, kReceived, kSent});
    QCOMPARE(file.size(), 224);
    for (int size = 1; size < file.size(); ++size) {
        const Parsed parsed(QByteArray(file.constData(), size)); // a copy: the sanitizer sees its end
        const bool isBetweenBlocks = size == 68 || size == 116 || size == 172;
        const int begin = size < 68 ? 0 : size < 116 ? 68 : size < 172 ? 116 : 172;
        const QString cut = QStringLiteral("cut in the middle of the block at byte %1").arg(begin);
        QCOMPARE(parsed.isWhole, isBetweenBlocks);
        QCOMPARE(parsed.error, isBetweenBlocks ? QString() : cut);
        QCOMPARE(parsed.count(), size < 172 ? 0 : 1);
    }
}

void tst_recording_reader::everyByteMayBeWrong()
{
    const QByteArray file = joined({kSection, kInterface, kReceived, kSent});
    for (int at = 0; at < file.size(); ++at) {
        for (int value = 0; value < 256; ++value) {
            QByteArray wrong(file.constData(), file.size());
            wrong[at] = char(value);
            const Parsed parsed(wrong);
            QCOMPARE(parsed.isWhole, parsed.error.isEmpty());
            QVERIFY2(parsed.count() <= 2, qPrintable(QString::number(at)));
            if (at >= 116)
                QCOMPARE(parsed.recording.comment, QStringLiteral("on then"));
        }
    }
}

QTEST_GUILESS_MAIN(tst_recording_reader)
#include "tst_recording_reader.moc"
