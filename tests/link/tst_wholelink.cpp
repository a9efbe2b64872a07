#include "seedruns.h"

#include <contentof.h>

#include <QtCore/QTemporaryDir>
#include <QtTest/QTest>

#include <virtualtime.h>

#include <memory>

// The whole link for a few hundred seeds; many more by run.sh. A failing seed is printed, and
// CANBUS_SIM_SEED=N runs that one alone and writes all that happens into simulated-link-N.trace.

namespace {

constexpr quint32 kSeeds = 300;
constexpr int kJobs = 2;

} // namespace

class WholeLinkTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase()
    {
        m_headUnit = std::make_unique<ParkedHeadUnit>();
        m_runs = std::make_unique<SeedRuns>(*m_headUnit);
    }

    void cleanupTestCase()
    {
        m_runs.reset();
        m_headUnit.reset();
    }

    void everyRuleHoldsWhateverTheSeed()
    {
        if (qEnvironmentVariableIsSet("CANBUS_SIM_SEED"))
            return runOne(quint32(qEnvironmentVariableIntValue("CANBUS_SIM_SEED")));
        m_runs->run(1, kSeeds, kJobs, [this](const RunResult &result) {
            for (const NamedCount &each : addableCounts())
                m_sum.*each.count += result.counts.*each.count;
            if (!result.failure.isEmpty())
                m_failures += QStringLiteral("seed %1: %2").arg(result.seed).arg(result.failure);
            return m_failures.size() < 5;
        });
        QVERIFY2(m_failures.isEmpty(), qPrintable(m_failures.join('\n')));
    }

    // Rules that hold where nothing happens say little.
    void theSeedsMeetEveryTrouble()
    {
        if (qEnvironmentVariableIsSet("CANBUS_SIM_SEED"))
            QSKIP("one seed does not meet everything");
        for (const NamedCount &each : addableCounts())
            QVERIFY2(each.isRare || m_sum.*each.count > 0, each.name);
    }

    void aSeedReplaysByteForByte()
    {
        const QTemporaryDir folder;
        const QString first = folder.filePath("first");
        const QString second = folder.filePath("second");
        for (const quint32 seed : {5U, 6U, 7U, 13U}) {
            const quint64 digest = m_runs->runOne(seed).digest;
            QCOMPARE(m_runs->runOne(seed, first).digest, digest);
            QCOMPARE(m_runs->runOne(seed, second).digest, digest);
            QVERIFY(contentOf(first).size() > 10000);
            QCOMPARE(contentOf(first), contentOf(second));
        }
        QVERIFY(m_runs->runOne(5).digest != m_runs->runOne(6).digest);
    }

    void hoursLeaveTheMemoryAsItIs()
    {
        const RunResult result = m_runs->runHours(1, 2);
        QCOMPARE(result.failure, QString());
        QCOMPARE(result.samples.size(), 2);
        QVERIFY(result.counts.leftOut > 0);
        if (!MemorySample::meansSomething())
            QSKIP("a sanitizer keeps freed memory");
        QCOMPARE(growthOf(result.samples), QString());
    }

    void growthAtAnyHourIsNamed()
    {
        const MemorySample usual {20000, 1000000, 4096};
        const QList<MemorySample> flat {usual, {20512, 1196608, 12288}, usual};
        QCOMPARE(growthOf(flat), QString());
        QCOMPARE(growthOf({usual, {20513, 1000000, 4096}, usual}),
                 QString("in hour 2 20000 KiB resident have become 20513"));
        QCOMPARE(growthOf({usual, usual, {20000, 1196609, 4096}}),
                 QString("in hour 3 1000000 bytes in use have become 1196609"));
        QCOMPARE(growthOf({usual, {20000, 1000000, 12289}, usual}),
                 QString("in hour 2 4096 bytes for the receive buffer have become 12289"));
        QCOMPARE(growthOf({}), QString("no sample of the memory was taken"));
    }

private:
    void runOne(quint32 seed)
    {
        const QString path = QStringLiteral("simulated-link-%1.trace").arg(seed);
        qInfo("all that happens is in %s", qPrintable(path));
        QCOMPARE(m_runs->runOne(seed, path).failure, QString());
    }

    std::unique_ptr<ParkedHeadUnit> m_headUnit;
    std::unique_ptr<SeedRuns> m_runs;
    QStringList m_failures;
    WireCounts m_sum;
};

VIRTUAL_TIME_TEST_MAIN(WholeLinkTest)
#include "tst_wholelink.moc"
