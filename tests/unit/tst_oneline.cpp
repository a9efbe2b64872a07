#include "commandline/oneline.h"

#include <QtTest/QTest>

/// Texts from outside, such as the names of files, in messages of one line.
class tst_oneline : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void keepsToOneLine_data();
    void keepsToOneLine();
    void changesNothingTheSecondTime();
};

void tst_oneline::keepsToOneLine_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("line");

    QTest::newRow("a plain text") << QString::fromUtf8("Gr\xc3\xbc\xc3\x9f \\n")
                                  << QString::fromUtf8("Gr\xc3\xbc\xc3\x9f \\n");
    QTest::newRow("a line break") << "a\nb"
                                  << "a\\nb";
    QTest::newRow("a carriage return and a tab") << "a\rb\tc"
                                                 << "a\\rb\\tc";
    QTest::newRow("an escape of a terminal") << "\x1b[2J"
                                             << "\\x1b[2J";
    QTest::newRow("a zero") << QString(QChar(0)) + 'b' << "\\x00b";
    QTest::newRow("a separator of lines") << QString(QChar(0x2028)) << "\\u2028";
    QTest::newRow("a separator of paragraphs") << QString(QChar(0x2029)) << "\\u2029";
}

void tst_oneline::keepsToOneLine()
{
    QFETCH(QString, text);
    QTEST(canbus::onOneLine(text), "line");
}

void tst_oneline::changesNothingTheSecondTime()
{
    const QString once = canbus::onOneLine("two\nlines\\n");
    QCOMPARE(canbus::onOneLine(once), once);
}

QTEST_GUILESS_MAIN(tst_oneline)
#include "tst_oneline.moc"
