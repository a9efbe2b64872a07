#include "support/text.h"

#include <hexbytes.h>

#include <QtTest/QTest>

using namespace canbus;

class TestText : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void splitsAtEveryZeroByte_data();
    void splitsAtEveryZeroByte();
    void appendsToTheListThatIsThere();
    void removesReplacementCharacters_data();
    void removesReplacementCharacters();
    void readsATextUpToTheFirstZeroByte_data();
    void readsATextUpToTheFirstZeroByte();
    void doesNotCleanATextUpToZero();
};

void TestText::splitsAtEveryZeroByte_data()
{
    QTest::addColumn<QByteArray>("data");
    QTest::addColumn<QStringList>("texts");
    QTest::newRow("nothing") << QByteArray() << QStringList();
    QTest::newRow("one text") << bytes("41 43 00") << QStringList {"AC"};
    QTest::newRow("two texts") << bytes("41 00 42 00") << QStringList {"A", "B"};
    QTest::newRow("bytes behind the last zero are lost") << bytes("41 00 00 42") << QStringList {"A", ""};
    QTest::newRow("no zero, no text") << bytes("41 42") << QStringList();
    QTest::newRow("zeros alone are empty texts") << bytes("00 00 00") << QStringList {"", "", ""};
    QTest::newRow("several bytes make one character")
        << bytes("c2 b0 43 00 e2 82 ac 00")
        << QStringList {QString::fromUtf16(u"\u00b0C"), QString::fromUtf16(u"\u20ac")};
    QTest::newRow("a character beyond sixteen bits")
        << bytes("f0 9f 98 80 00") << QStringList {QString::fromUtf16(u"\U0001f600")};
    QTest::newRow("bytes that are no UTF-8 vanish") << bytes("41 ff 42 fe 00") << QStringList {"AB"};
    QTest::newRow("a text of such bytes alone is empty") << bytes("ff 00 41 00") << QStringList {"", "A"};
    QTest::newRow("a zero byte ends a character that is not complete")
        << bytes("c3 00 a9 42 00") << QStringList {"", "B"};
}

void TestText::splitsAtEveryZeroByte()
{
    QFETCH(QByteArray, data);
    QStringList texts;
    splitZeroTerminated(texts, data);
    QTEST(texts, "texts");
}

void TestText::appendsToTheListThatIsThere()
{
    QStringList texts {"before"};
    splitZeroTerminated(texts, bytes("41 00"));
    splitZeroTerminated(texts, bytes("42 00"));
    QCOMPARE(texts, (QStringList {"before", "A", "B"}));
}

void TestText::removesReplacementCharacters_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("cleaned");
    QTest::newRow("none in it") << QStringLiteral("Climate") << QStringLiteral("Climate");
    QTest::newRow("at the start, in the middle, at the end")
        << QString::fromUtf16(u"\ufffdA\ufffd\ufffdB\ufffd") << QStringLiteral("AB");
    QTest::newRow("nothing else") << QString::fromUtf16(u"\ufffd") << QString();
    QTest::newRow("neighbours in the table stay")
        << QString::fromUtf16(u"\ufffc\ufffd\ufeff") << QString::fromUtf16(u"\ufffc\ufeff");
    QTest::newRow("empty") << QString() << QString();
}

void TestText::removesReplacementCharacters()
{
    QFETCH(QString, text);
    removeReplacementCharacters(text);
    QTEST(text, "cleaned");
}

void TestText::readsATextUpToTheFirstZeroByte_data()
{
    QTest::addColumn<QByteArray>("data");
    QTest::addColumn<int>("from");
    QTest::addColumn<QString>("text");
    QTest::newRow("to the zero byte") << bytes("41 42 00 43") << 0 << QStringLiteral("AB");
    QTest::newRow("to the end") << bytes("41 42") << 0 << QStringLiteral("AB");
    QTest::newRow("from the second byte") << bytes("00 42 43 00") << 1 << QStringLiteral("BC");
    QTest::newRow("a zero byte before it does not count")
        << bytes("00 41 42 43 00") << 2 << QStringLiteral("BC");
    QTest::newRow("the last byte alone") << bytes("41 42") << 1 << QStringLiteral("B");
    QTest::newRow("starting at the zero byte") << bytes("41 00 42") << 1 << QString();
    QTest::newRow("starting at the end") << bytes("41") << 1 << QString();
    QTest::newRow("starting behind the end") << bytes("41") << 5 << QString();
    QTest::newRow("several bytes make one character")
        << bytes("c2 b0 00") << 0 << QString::fromUtf16(u"\u00b0");
}

void TestText::readsATextUpToTheFirstZeroByte()
{
    QFETCH(QByteArray, data);
    QFETCH(int, from);
    QTEST(textUpToZero(data, from), "text");
}

void TestText::doesNotCleanATextUpToZero()
{
    QCOMPARE(textUpToZero(bytes("41 ff 42 00")), QString::fromUtf16(u"A\ufffdB"));
}

QTEST_GUILESS_MAIN(TestText)
#include "tst_text.moc"
