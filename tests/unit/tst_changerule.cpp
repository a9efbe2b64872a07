#include "support/changerule.h"

#include <QtCore/QStringList>
#include <QtTest/QTest>

using namespace canbus;

class TestChangeRule : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void storesWhatDiffers();
    void leavesWhatIsTheSame();
    void countsTwoItemsAsOne_data();
    void countsTwoItemsAsOne();
    void announcesAListOfFixedLengthOnlyWhenItChanges();
    void announcesAListOnlyWhenItChanges();
    void announcesAnEmptyListEachTime();
    void announcesAnEmptyTextEachTime();
};

void TestChangeRule::storesWhatDiffers()
{
    int stored = -1;
    QVERIFY(replaceIfChanged(stored, 0));
    QCOMPARE(stored, 0);
    QVERIFY(replaceIfChanged(stored, 255));
    QCOMPARE(stored, 255);
}

void TestChangeRule::leavesWhatIsTheSame()
{
    QList<int> stored {1, 2};
    const QList<int> equal {1, 2};
    QVERIFY(!replaceIfChanged(stored, equal));
    QVERIFY(!stored.isSharedWith(equal));
}

void TestChangeRule::countsTwoItemsAsOne_data()
{
    QTest::addColumn<int>("first");
    QTest::addColumn<int>("second");
    QTest::addColumn<bool>("changed");
    QTest::newRow("both are the same") << 10 << 20 << false;
    QTest::newRow("the first differs") << 11 << 20 << true;
    QTest::newRow("the second differs") << 10 << 21 << true;
    QTest::newRow("both differ") << 11 << 21 << true;
    QTest::newRow("exchanged") << 20 << 10 << true;
}

void TestChangeRule::countsTwoItemsAsOne()
{
    QFETCH(int, first);
    QFETCH(int, second);
    int storedFirst = 10;
    int storedSecond = 20;
    QTEST(replaceIfChanged(storedFirst, first, storedSecond, second), "changed");
    QCOMPARE(storedFirst, first);
    QCOMPARE(storedSecond, second);
}

void TestChangeRule::announcesAListOfFixedLengthOnlyWhenItChanges()
{
    QList<int> stored;
    QVERIFY(replaceIfChanged(stored, std::array {0, 0}));
    QCOMPARE(stored, (QList<int> {0, 0}));
    const QList<int> kept = stored;
    QVERIFY(!replaceIfChanged(stored, std::array {0, 0}));
    QVERIFY(stored.isSharedWith(kept));
    QVERIFY(replaceIfChanged(stored, std::array {0, 1}));
    QCOMPARE(stored, (QList<int> {0, 1}));
    QCOMPARE(kept, (QList<int> {0, 0}));
    // Of another length, and the same as far as both go.
    QVERIFY(replaceIfChanged(stored, std::array {0, 1, 2}));
    QVERIFY(replaceIfChanged(stored, std::array {0, 1}));
    QCOMPARE(stored, (QList<int> {0, 1}));
}

void TestChangeRule::announcesAListOnlyWhenItChanges()
{
    QStringList stored;
    QVERIFY(replaceIfChangedOrEmpty(stored, QStringList {"A"}));
    QCOMPARE(stored, QStringList {"A"});
    QVERIFY(!replaceIfChangedOrEmpty(stored, QStringList {"A"}));
    QVERIFY(replaceIfChangedOrEmpty(stored, QStringList {"A", "B"}));
    QCOMPARE(stored, (QStringList {"A", "B"}));
}

void TestChangeRule::announcesAnEmptyListEachTime()
{
    QStringList stored {"A"};
    QVERIFY(replaceIfChangedOrEmpty(stored, QStringList()));
    QVERIFY(stored.isEmpty());
    QVERIFY(replaceIfChangedOrEmpty(stored, QStringList()));
    QVERIFY(replaceIfChangedOrEmpty(stored, QStringList()));
    // A list of one empty text is not an empty list.
    QVERIFY(replaceIfChangedOrEmpty(stored, QStringList {""}));
    QVERIFY(!replaceIfChangedOrEmpty(stored, QStringList {""}));
}

void TestChangeRule::announcesAnEmptyTextEachTime()
{
    QString stored;
    QVERIFY(replaceIfChangedOrEmpty(stored, QString()));
    QVERIFY(replaceIfChangedOrEmpty(stored, QStringLiteral("A")));
    QVERIFY(!replaceIfChangedOrEmpty(stored, QStringLiteral("A")));
}

QTEST_GUILESS_MAIN(TestChangeRule)
#include "tst_changerule.moc"
