#include "commandline/similarnames.h"

#include <QtTest/QTest>

using namespace canbus;

/// What somebody who mistyped a name may have meant.
class SimilarNamesTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void findsWhatWasMeant_data();
    void findsWhatWasMeant();
    void findsTheMostSimilar_data();
    void findsTheMostSimilar();
};

void SimilarNamesTest::findsWhatWasMeant_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QStringList>("candidates");
    QTest::addColumn<QStringList>("similar");

    const auto row = [](const char *what, const char *name, const QStringList &candidates,
                        const QStringList &similar) {
        QTest::newRow(what) << QString(name) << candidates << similar;
    };
    row("the name itself", "door", {"door"}, {"door"});
    row("other cases, on either side", "maintemp", {"mainTemp", "MAINTEMP"}, {"mainTemp", "MAINTEMP"});
    row("a part of it, in the order of the candidates", "Temp", {"secondTemp", "fan", "mainTemp"},
        {"secondTemp", "mainTemp"});
    row("a letter left out", "dor", {"door"}, {"door"});
    row("a letter too many", "dooor", {"door"}, {"door"});
    row("a letter for another", "daor", {"door"}, {"door"});
    row("the first letter left out", "oor", {"roof", "door"}, {"door"});
    row("the last letter for another", "hoo", {"hot"}, {"hot"});
    row("three letters bear one mistake", "abc", {"abx", "axy", "xyz"}, {"abx"});
    row("four letters bear two", "abcd", {"abxy", "axyz"}, {"abxy"});
    row("eight letters bear three", "abcdefgh", {"abcdexyz", "abcdwxyz"}, {"abcdexyz"});
    row("two letters in each other's place are two mistakes", "odo", {"doo"}, {});
    row("a longer name bears them", "droo", {"door"}, {"door"});
    row("nothing written means anything", "", {"door", "hood"}, {"door", "hood"});
    row("no candidates", "door", {}, {});
}

void SimilarNamesTest::findsWhatWasMeant()
{
    QFETCH(QString, name);
    QFETCH(QStringList, candidates);
    QTEST(similarNames(name, candidates), "similar");
}

void SimilarNamesTest::findsTheMostSimilar_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QStringList>("candidates");
    QTest::addColumn<QString>("nearest");

    QTest::newRow("fewer mistakes") << "restrt" << QStringList {"reset", "restart", "rests"} << "restart";
    QTest::newRow("the first of equals") << "hot" << QStringList {"hit", "hat"} << "hit";
    QTest::newRow("a small mistake goes before a part")
        << "temp" << QStringList {"manualTemp", "tempo"} << "tempo";
    QTest::newRow("the case is no mistake") << "ABCD" << QStringList {"ABxD", "abcd"} << "abcd";
    QTest::newRow("nothing is similar") << "door" << QStringList {"engine"} << QString();
    QTest::newRow("no candidates") << "door" << QStringList() << QString();
}

void SimilarNamesTest::findsTheMostSimilar()
{
    QFETCH(QString, name);
    QFETCH(QStringList, candidates);
    QTEST(mostSimilarName(name, candidates), "nearest");
}

QTEST_GUILESS_MAIN(SimilarNamesTest)
#include "tst_similarnames.moc"
