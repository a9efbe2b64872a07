#include "player/canbusdatamap.h"

#include <hexbytes.h>
#include <longestwait.h>

#include <QtCore/QThread>
#include <QtTest/QTest>

#include <atomic>
#include <memory>

using namespace canbus;

using Record = QList<QVariant>;

namespace {

CanBusDataMap *map()
{
    return CanBusDataMap::instance();
}

} // namespace

/// Each test has categories of its own: what is stored stays for the life of the process.
class TestCanBusDataMap : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void isOneForTheProcess();
    void hasNothingAtFirst();
    void givesBackWhatWasStored();
    void replacesARecord();
    void givesTheIdAsBytes_data();
    void givesTheIdAsBytes();
    void countsAnEmptyRecord();
    void leavesARecordThatIsStoredAgain();
    void replacesARecordByAnEqualOne();
    void keepsCategoriesApart_data();
    void keepsCategoriesApart();
    void givesCopies();
    void bearsAReaderAndAWriterAtOnce();
    void bearsAReaderWhileFramesAreStored();
};

void TestCanBusDataMap::isOneForTheProcess()
{
    QVERIFY(map());
    QCOMPARE(CanBusDataMap::instance(), map());
}

void TestCanBusDataMap::hasNothingAtFirst()
{
    QVERIFY(!map()->isHasData(0x30));
    QCOMPARE(map()->getId(0x30), QByteArray());
    QCOMPARE(map()->getData(0x30), Record());
    // Asking stores nothing.
    QVERIFY(!map()->isHasData(0x30));
}

void TestCanBusDataMap::givesBackWhatWasStored()
{
    const Record record {bytes("21"), bytes("02"), bytes("01 2c 00")};
    map()->setData(0x31, record);
    QVERIFY(map()->isHasData(0x31));
    QCOMPARE(map()->getData(0x31), record);
    QCOMPARE(map()->getId(0x31), bytes("21"));
}

void TestCanBusDataMap::replacesARecord()
{
    map()->setData(0x32, {bytes("21"), bytes("00")});
    map()->setData(0x32, {bytes("9f"), bytes("01"), bytes("02")});
    QCOMPARE(map()->getId(0x32), bytes("9f"));
    QCOMPARE(map()->getData(0x32), (Record {bytes("9f"), bytes("01"), bytes("02")}));
    map()->setData(0x32, {});
    QCOMPARE(map()->getId(0x32), QByteArray());
    QVERIFY(map()->isHasData(0x32));
}

void TestCanBusDataMap::givesTheIdAsBytes_data()
{
    QTest::addColumn<QList<QVariant>>("record");
    QTest::addColumn<QByteArray>("id");
    QTest::newRow("the first element") << Record {bytes("9f"), bytes("ff")} << bytes("9f");
    QTest::newRow("whole, also when it is long") << Record {bytes("21 22 23")} << bytes("21 22 23");
    QTest::newRow("empty when the element is empty") << Record {QByteArray(), bytes("ff")} << QByteArray();
    QTest::newRow("a text becomes bytes") << Record {QStringLiteral("AB")} << bytes("41 42");
    QTest::newRow("empty when the record is empty") << Record() << QByteArray();
}

void TestCanBusDataMap::givesTheIdAsBytes()
{
    QFETCH(QList<QVariant>, record);
    map()->setData(0x33, record);
    QTEST(map()->getId(0x33), "id");
}

void TestCanBusDataMap::countsAnEmptyRecord()
{
    map()->setData(0x34, {});
    QVERIFY(map()->isHasData(0x34));
    QCOMPARE(map()->getId(0x34), QByteArray());
    QCOMPARE(map()->getData(0x34), Record());
}

void TestCanBusDataMap::leavesARecordThatIsStoredAgain()
{
    const Record record {bytes("21"), bytes("00")};
    map()->setData(0x35, record);
    map()->setData(0x35, record);
    QVERIFY(map()->getData(0x35).isSharedWith(record));
    QCOMPARE(map()->getData(0x35), (Record {bytes("21"), bytes("00")}));
}

void TestCanBusDataMap::replacesARecordByAnEqualOne()
{
    const Record first {bytes("21"), bytes("00")};
    const Record equal {bytes("21"), bytes("00")};
    QVERIFY(!first.isSharedWith(equal));
    map()->setData(0x36, first);
    QVERIFY(map()->getData(0x36).isSharedWith(first));
    map()->setData(0x36, equal);
    QVERIFY(map()->getData(0x36).isSharedWith(equal));
}

void TestCanBusDataMap::keepsCategoriesApart_data()
{
    QTest::addColumn<int>("category");
    QTest::addColumn<int>("other");
    QTest::newRow("the greatest is not the greatest below the sign bit") << 0xff << 0x7f;
    QTest::newRow("the sign bit counts") << 0x80 << 0x00;
    QTest::newRow("neighbours") << 0xf1 << 0xf0;
}

void TestCanBusDataMap::keepsCategoriesApart()
{
    QFETCH(int, category);
    QFETCH(int, other);
    map()->setData(quint8(category), {bytes("01")});
    QVERIFY(!map()->isHasData(quint8(other)));
    map()->setData(quint8(other), {bytes("02")});
    QCOMPARE(map()->getId(quint8(category)), bytes("01"));
    QCOMPARE(map()->getId(quint8(other)), bytes("02"));
}

void TestCanBusDataMap::givesCopies()
{
    Record record {bytes("21"), bytes("00")};
    map()->setData(0x37, record);
    record[0] = bytes("55");
    Record given = map()->getData(0x37);
    given.clear();
    QByteArray id = map()->getId(0x37);
    id[0] = 'x';
    QCOMPARE(map()->getData(0x37), (Record {bytes("21"), bytes("00")}));
    QCOMPARE(map()->getId(0x37), bytes("21"));
}

void TestCanBusDataMap::bearsAReaderAndAWriterAtOnce()
{
    map()->setData(0x38, {bytes("11"), bytes("11 11")});
    std::atomic<bool> done {false};
    const std::unique_ptr<QThread> writer(QThread::create([&done] {
        for (int count = 0; count < 20000; ++count) {
            map()->setData(0x38, {bytes("22"), bytes("22 22")});
            map()->setData(quint8(0x40 + count % 64), {bytes("33")}); // moves the nodes of the map
            map()->setData(0x38, {bytes("11"), bytes("11 11")});
        }
        done = true;
    }));
    writer->start();
    int broken = 0;
    while (!done) {
        const Record record = map()->getData(0x38);
        const bool whole =
            record == Record {bytes("11"), bytes("11 11")} || record == Record {bytes("22"), bytes("22 22")};
        const QByteArray id = map()->getId(0x38);
        broken += whole && (id == bytes("11") || id == bytes("22")) && map()->isHasData(0x38) ? 0 : 1;
    }
    QVERIFY(writer->wait(kLongestWaitMs));
    QCOMPARE(broken, 0);
}

void TestCanBusDataMap::bearsAReaderWhileFramesAreStored()
{
    map()->setRecord(0x39, {bytes("11"), bytes("11 11")});
    std::atomic<bool> done {false};
    const std::unique_ptr<QThread> parser(QThread::create([&done] {
        for (int count = 0; count < 20000; ++count) {
            map()->setRecord(0x39, {bytes("22"), bytes("22 22")});
            map()->setRecord(0x39, {bytes("11"), bytes("11 11")});
        }
        done = true;
    }));
    parser->start();
    int broken = 0;
    while (!done) {
        const Record record = map()->getData(0x39);
        const bool whole =
            record == Record {bytes("11"), bytes("11 11")} || record == Record {bytes("22"), bytes("22 22")};
        const QByteArray id = map()->getId(0x39);
        broken += whole && (id == bytes("11") || id == bytes("22")) ? 0 : 1;
    }
    QVERIFY(parser->wait(kLongestWaitMs));
    QCOMPARE(broken, 0);
}

QTEST_GUILESS_MAIN(TestCanBusDataMap)
#include "tst_canbusdatamap.moc"
