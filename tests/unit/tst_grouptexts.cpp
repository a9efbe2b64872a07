#include "grouptexts.h"
#include "hexbytes.h"
#include "logrecorder.h"

#include <QtTest/QTest>

using namespace canbus;

/// When the texts of a group are news, and what is kept of those that are none.
class GroupTextsTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void refusesTextsWithoutAByte();
    void refusesATitleWithoutAByte();
};

void GroupTextsTest::refusesTextsWithoutAByte()
{
    const LogRecorder log;
    QStringList stored {"A"};
    QVERIFY(!takeTexts(CANBUS_HERE, stored, QByteArray()));
    QCOMPARE(stored, QStringList {"A"});
    QCOMPARE(log.messages("[ERR]"), QStringList {"data is error"});
    QVERIFY(takeTexts(CANBUS_HERE, stored, bytes("42 00")));
    QCOMPARE(stored, QStringList {"B"});
}

void GroupTextsTest::refusesATitleWithoutAByte()
{
    const LogRecorder log;
    QString stored = "A";
    QVERIFY(!takeTitle(CANBUS_HERE, stored, QByteArray()));
    QCOMPARE(stored, QString("A"));
    QCOMPARE(log.messages("[ERR]"), QStringList {"data is error"});
    QVERIFY(takeTitle(CANBUS_HERE, stored, bytes("42 00")));
    QCOMPARE(stored, QString("B"));
}

QTEST_GUILESS_MAIN(GroupTextsTest)
#include "tst_grouptexts.moc"
