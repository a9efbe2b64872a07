#include "bench.h"

#include <QtCore/QDir>
#include <QtCore/QJsonArray>
#include <QtCore/QJsonObject>
#include <QtCore/QMap>
#include <QtTest/QTest>

#include <map>
#include <memory>

// Each scenario of scenarios/faults with a box and a monitor of its own, all of them at the same time. When
// the fault is over the library is where the box is, and the figures of the link tell what has happened, and
// what has not.

namespace {

const QString kFolder = QStringLiteral(CANBUS_SOURCE_DIR "/scenarios/faults");
constexpr int kRunMs = 150000; // the scenarios take 30 s on a machine that has time for them

auto isEvent(const QString &event, const QString &reason = {})
{
    return [event, reason](const QJsonObject &line) {
        return line["event"] == event && (reason.isEmpty() || line["reason"] == reason);
    };
}

bool isStats(const QJsonObject &line)
{
    return line.contains(QStringLiteral("stats"));
}

/// What a signal has announced last.
QJsonObject lastOf(const QVector<QJsonObject> &lines, const QString &signal)
{
    QJsonObject arguments;
    for (const QJsonObject &line : lines) {
        if (line["signal"] == signal)
            arguments = line["args"].toObject();
    }
    return arguments;
}

/// The link's news, in order.
QVector<bool> statusesIn(const QVector<QJsonObject> &lines)
{
    QVector<bool> statuses;
    for (const QJsonObject &line : lines) {
        if (line["signal"] == QLatin1String("canbusConnectStatus"))
            statuses.append(line["args"].toObject()["status"].toBool());
    }
    return statuses;
}

/// How the commands have ended, each way once.
QStringList fatesIn(const QVector<QJsonObject> &lines)
{
    QStringList fates;
    for (const QJsonObject &line : lines) {
        if (line["signal"] == QLatin1String("commandEnded"))
            fates.append(line["args"].toObject()["fate"].toString());
    }
    fates.removeDuplicates();
    fates.sort();
    return fates;
}

QJsonObject figuresAt(const QVector<QJsonObject> &lines, int nth)
{
    for (const QJsonObject &line : lines) {
        if (isStats(line) && nth-- == 0)
            return line["stats"].toObject();
    }
    return {};
}

/// A scenario with its head unit, from the start of both to the end of the box.
class FaultRun {
public:
    explicit FaultRun(const QString &name)
        : m_bench({"--scenario", kFolder + '/' + name + ".json", "--seed", "1"})
    {
    }

    /// Goes on as far as it goes without waiting. @return whether box and head unit have ended
    bool step()
    {
        if (!m_bench.box)
            return !m_bench.startBox();
        if (!m_bench.monitor)
            m_bench.startMonitor({"--stats"});
        if (!m_before && m_bench.box->hasObject(isEvent("lineBack")))
            openAnew();
        Program &monitor = *m_bench.monitor;
        if (m_statsBefore < 0 && m_bench.box->hasObject(isEvent("note", "recovered"))) {
            m_statsBefore = monitor.count(isStats);
            monitor.writeLine("stats");
        }
        return !m_bench.box->isRunning() && endMonitor();
    }

    Program &box() { return *m_bench.box; }

    /// What the head unit has printed.
    QVector<QJsonObject> lines() { return m_bench.monitor->objects(); }

    /// The figures after the recovery; empty until they are there.
    QJsonObject figures() { return m_statsBefore < 0 ? QJsonObject() : figuresAt(lines(), m_statsBefore); }

    /// What the head unit printed whose line was lost, with its figures at the end; empty without a hang-up.
    QVector<QJsonObject> linesBefore() { return m_before ? m_before->objects() : QVector<QJsonObject>(); }

    QList<QByteArray> complaintsBefore() { return m_before->complaints(); }

    int statusBefore() const { return m_statusBefore; }

    QByteArray link() const { return m_bench.link().toUtf8(); }

private:
    /// A head unit whose line was lost has ended: it is started again.
    void openAnew()
    {
        m_before = std::move(m_bench.monitor);
        m_statusBefore = m_before->exitStatus();
        m_bench.startMonitor({"--stats"});
    }

    /// Before it takes the box's end for a lost link. @return whether it has ended
    bool endMonitor()
    {
        if (!m_isToldToEnd)
            m_bench.monitor->signal(SIGINT);
        m_isToldToEnd = true;
        return !m_bench.monitor->isRunning();
    }

    Bench m_bench;
    bool m_isToldToEnd = false;
    std::unique_ptr<Program> m_before;
    int m_statusBefore = -1;
    int m_statsBefore = -1; // how many there were when the figures were asked for
};

/// What a figure has to be.
struct Bounds {
    double least;
    double most;
};

using Figures = QMap<QString, Bounds>;

constexpr double kAny = 1e9;
constexpr Bounds kSome {1, kAny};
constexpr Bounds kPerhaps {0, kAny};

Bounds exactly(int count)
{
    return {double(count), double(count)};
}

/// The figures that say that something went wrong, all of them none. Retransmissions are not among them: a
/// machine that has no time for the box for 300 ms causes one.
Figures untroubled()
{
    Figures figures;
    for (const char *name : {"badChecks", "skippedBytes", "discardedBuffers", "discardedBytes",
                             "receivedNacks", "givenUp", "refusedFull", "linkLosses", "portErrors"})
        figures[name] = exactly(0);
    return figures;
}

/// The first of the figures that is out of its bounds; empty when there is none.
QString outOfBounds(const QJsonObject &figures, const Figures &expected)
{
    Figures all = untroubled();
    for (auto figure = expected.begin(); figure != expected.end(); ++figure)
        all[figure.key()] = figure.value();
    for (auto figure = all.begin(); figure != all.end(); ++figure) {
        const double value = figures[figure.key()].toDouble(-1);
        if (value < figure->least || value > figure->most)
            return QStringLiteral("%1 is %2").arg(figure.key()).arg(value);
    }
    return {};
}

/// What damaged bytes may do besides: the box's answers are damaged too.
Figures damaged(Figures figures)
{
    for (const char *name : {"skippedBytes", "receivedNacks", "givenUp", "linkLosses", "badChecks"}) {
        if (!figures.contains(name))
            figures[name] = kPerhaps;
    }
    return figures;
}

const QStringList kAcknowledged {"Acknowledged"};
const QVector<bool> kNeverLost {true};
const QVector<bool> kLostOnce {true, false, true};

/// What a fault does to the head unit.
struct Row {
    const char *scenario = "";
    Figures figures;        // what is not named has to be none, see untroubled()
    QVector<bool> statuses; // empty: whatever they are, the link is up at the end
    QStringList fates;      // empty: any
};

QVector<Row> rows()
{
    return {
        {"answers-all-dropped",
         {{"retransmissions", kSome}, {"givenUp", kSome}, {"linkLosses", kSome}},
         kLostOnce,
         {"Acknowledged", "GivenUp"}},
        {"answers-some-dropped",
         {{"retransmissions", kSome}, {"givenUp", kPerhaps}, {"linkLosses", kPerhaps}},
         {},
         {}},
        {"answers-first-dropped", {{"retransmissions", {2, kAny}}}, kNeverLost, kAcknowledged},
        {"answers-nack", {{"receivedNacks", kSome}}, kNeverLost, {"Acknowledged", "Refused"}},
        {"answers-wrong-id",
         {{"retransmissions", kSome}, {"givenUp", kSome}, {"linkLosses", kSome}},
         kLostOnce,
         {"Acknowledged", "GivenUp"}},
        {"check-bytes-wrong", {{"badChecks", kSome}}, kNeverLost, kAcknowledged},
        {"bytes-flipped", damaged({{"badChecks", kSome}}), {}, {}},
        {"bytes-lost", damaged({{"badChecks", kSome}}), {}, {}},
        {"bytes-doubled", damaged({{"badChecks", kSome}}), {}, {}},
        {"bytes-inserted", damaged({{"badChecks", kSome}}), {}, {}},
        {"frames-split", {}, kNeverLost, kAcknowledged},
        {"frames-bytewise", {}, kNeverLost, kAcknowledged},
        {"frames-merged", {}, kNeverLost, kAcknowledged},
        {"pause-in-frame", {}, kNeverLost, kAcknowledged},
        {"noise", damaged({{"skippedBytes", kSome}}), {}, {}},
        {"silence",
         {{"retransmissions", kSome}, {"givenUp", kSome}, {"linkLosses", exactly(1)}},
         kLostOnce,
         {"Acknowledged", "GivenUp"}},
        // One at the start, one for the unasked "not ready", one for each of the three answers.
        {"not-ready", {{"connectRequests", exactly(5)}}, kNeverLost, kAcknowledged},
        // One at the start, one for the unasked "ready", one to answer the box's last question.
        {"restart",
         {{"connectRequests", exactly(1)}, {"connectionChecks", {3, kAny}}},
         kNeverLost,
         kAcknowledged},
        {"hang-up", {}, kNeverLost, kAcknowledged},
    };
}

/// The files that are there, by their names.
QStringList scenarios()
{
    QStringList names = QDir(kFolder).entryList({QStringLiteral("*.json")}, QDir::Files);
    for (QString &name : names)
        name.chop(int(qstrlen(".json")));
    return names;
}

} // namespace

Q_DECLARE_METATYPE(Row)

class EndToEndFaults : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void areAllInTheTable();
    void endWithTheHeadUnitWhereTheBoxIs_data() { addRows(); }
    void endWithTheHeadUnitWhereTheBoxIs();
    void areToldByTheFigures_data() { addRows(); }
    void areToldByTheFigures();
    void loseTheLinkOnlyWhereItCannotBeHeld_data() { addRows(); }
    void loseTheLinkOnlyWhereItCannotBeHeld();
    void aLineThatIsGoneIsOneErrorOfThePort();

private:
    static void addRows();
    FaultRun &run() { return *m_runs.at(QTest::currentDataTag()); }

    std::map<QString, std::unique_ptr<FaultRun>> m_runs;
};

void EndToEndFaults::initTestCase()
{
    for (const Row &row : rows())
        m_runs[row.scenario] = std::make_unique<FaultRun>(row.scenario);
    const auto allHaveEnded = [this] {
        return std::count_if(m_runs.begin(), m_runs.end(), [](auto &run) { return run.second->step(); })
            == int(m_runs.size());
    };
    QTRY_VERIFY_WITH_TIMEOUT(allHaveEnded(), kRunMs);
}

void EndToEndFaults::addRows()
{
    QTest::addColumn<Row>("row");

    for (const Row &row : rows())
        QTest::newRow(row.scenario) << row;
}

void EndToEndFaults::areAllInTheTable()
{
    QStringList named;
    for (const Row &row : rows())
        named.append(row.scenario);
    named.sort();

    QCOMPARE(named, scenarios());
}

void EndToEndFaults::endWithTheHeadUnitWhereTheBoxIs()
{
    QVERIFY(run().box().endsWell());
    QCOMPARE(run().box().complaints(), QList<QByteArray>());
    QVERIFY(run().box().hasObject(isEvent("note", "recovered")));

    QTRY_COMPARE(lastOf(run().lines(), "updateClimateMainTemp")["value"].toInt(), 300);
    QCOMPARE(lastOf(run().lines(), "updateClimateTopText")["TopText"].toString(), QString("Sound again"));
    QCOMPARE(lastOf(run().lines(), "updateGaugeComText")["Text"].toArray(), QJsonArray({"Touring", "Hold"}));
}

void EndToEndFaults::areToldByTheFigures()
{
    QFETCH(Row, row);

    QCOMPARE(outOfBounds(run().figures(), row.figures), QString());
    const QStringList fates = fatesIn(run().lines());
    QVERIFY(fates.contains("Acknowledged"));
    if (!row.fates.isEmpty())
        QCOMPARE(fates, row.fates);
}

void EndToEndFaults::loseTheLinkOnlyWhereItCannotBeHeld()
{
    QFETCH(Row, row);

    const QVector<bool> statuses = statusesIn(run().lines());
    QVERIFY(!statuses.isEmpty() && statuses.last());
    if (!row.statuses.isEmpty())
        QCOMPARE(statuses, row.statuses);
}

void EndToEndFaults::aLineThatIsGoneIsOneErrorOfThePort()
{
    FaultRun &run = *m_runs.at("hang-up");
    const QVector<QJsonObject> lines = run.linesBefore();
    QCOMPARE(statusesIn(lines).mid(0, 1), kNeverLost);
    const int stats = int(std::count_if(lines.begin(), lines.end(), isStats));

    QCOMPARE(outOfBounds(figuresAt(lines, stats - 1), {{"portErrors", exactly(1)}}), QString());
    QCOMPARE(run.statusBefore(), 1);
    QCOMPARE(run.complaintsBefore(),
             QList<QByteArray>(
                 {"canbus-monitor: " + run.link() + " is gone: connect it and start canbus-monitor again"}));
}

QTEST_GUILESS_MAIN(EndToEndFaults)
#include "tst_e2e_faults.moc"
