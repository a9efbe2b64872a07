#include "boxsim/line/random.h"

#include <QtCore/QSet>
#include <QtTest/QTest>

using boxsim::Random;

namespace {

QVector<int> draws(quint32 seed, Random::Stream stream)
{
    Random random(seed, stream);
    QVector<int> bytes;
    for (int i = 0; i < 6; ++i)
        bytes.append(random.byte());
    return bytes;
}

} // namespace

class TestBoxsimRandom : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void drawsTheSameOnEveryMachine();
    void drawsOtherwiseForAnotherSeedOrStream();
    void drawsEveryNumberBelowALimit();
    void happensAsOftenAsItsShare_data();
    void happensAsOftenAsItsShare();
    void drawsNothingForNoShare();
};

// If these change, the seeds that people have noted down give other runs.
void TestBoxsimRandom::drawsTheSameOnEveryMachine()
{
    QCOMPARE(draws(1, Random::Stream::Bytes), QVector<int>({107, 178, 30, 247, 185, 13}));
    QCOMPARE(draws(4294967295U, Random::Stream::Noise), QVector<int>({147, 154, 179, 124, 97, 101}));
}

void TestBoxsimRandom::drawsOtherwiseForAnotherSeedOrStream()
{
    const QVector<int> first = draws(1, Random::Stream::Answers);

    QVERIFY(draws(2, Random::Stream::Answers) != first);
    QVERIFY(draws(1, Random::Stream::Frames) != first);
    QVERIFY(draws(1, Random::Stream::Noise) != draws(1, Random::Stream::Bytes));
}

void TestBoxsimRandom::drawsEveryNumberBelowALimit()
{
    Random random(1, Random::Stream::Bytes);
    QSet<quint32> seen;
    for (int i = 0; i < 1000; ++i)
        seen.insert(random.below(7));

    QCOMPARE(seen, QSet<quint32>({0, 1, 2, 3, 4, 5, 6}));
}

void TestBoxsimRandom::happensAsOftenAsItsShare_data()
{
    QTest::addColumn<double>("share");
    QTest::addColumn<int>("least");
    QTest::addColumn<int>("most");

    QTest::newRow("never") << 0.0 << 0 << 0;
    QTest::newRow("rarely") << 0.01 << 60 << 140;
    QTest::newRow("every other time") << 0.5 << 4800 << 5200;
    QTest::newRow("always") << 1.0 << 10000 << 10000;
}

void TestBoxsimRandom::happensAsOftenAsItsShare()
{
    QFETCH(double, share);
    QFETCH(int, least);
    QFETCH(int, most);
    Random random(3, Random::Stream::Answers);
    int count = 0;
    for (int i = 0; i < 10000; ++i)
        count += random.happens(share) ? 1 : 0;

    QVERIFY2(count >= least && count <= most, qPrintable(QString::number(count)));
}

void TestBoxsimRandom::drawsNothingForNoShare()
{
    Random asked(1, Random::Stream::Bytes);
    Random notAsked(1, Random::Stream::Bytes);

    QVERIFY(!asked.happens(0));

    QCOMPARE(int(asked.byte()), int(notAsked.byte()));
}

QTEST_GUILESS_MAIN(TestBoxsimRandom)
#include "tst_boxsim_random.moc"
