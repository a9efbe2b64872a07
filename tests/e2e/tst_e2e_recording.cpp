#include "bench.h"

#include "recording/recording.h"

#include <QtCore/QJsonDocument>
#include <QtCore/QJsonObject>
#include <QtCore/QMap>
#include <QtCore/QTemporaryDir>
#include <QtTest/QTest>

// A run of the built-in drive is recorded once; what is read from the recording, and what a replay of it
// brings about, is compared with what that run announced.

namespace {

constexpr int kRecordedMs = 12000; // the link is up after 2 s of them

/// Announced by timers of the groups, 300 ms apart: what of them is seen, and between which others, depends
/// on when these fall.
const QStringList kSampled {"updateGaugeValue", "updateGaugeValueText", "updateGaugeShift",
                            "updateVehicleTireText"};

/// By object: what it has announced, in order.
using Transcript = QMap<QString, QStringList>;

QString textOf(const QJsonObject &line)
{
    return line["signal"].toString() + QLatin1Char(' ')
        + QString::fromUtf8(QJsonDocument(line["args"].toObject()).toJson(QJsonDocument::Compact));
}

bool isAnnouncement(const QJsonObject &line)
{
    const QString name = line["signal"].toString();
    return name.startsWith("update") || name == QLatin1String("touch");
}

Transcript transcriptOf(const QVector<QJsonObject> &lines)
{
    Transcript transcript;
    for (const QJsonObject &line : lines) {
        if (isAnnouncement(line) && !kSampled.contains(line["signal"].toString()))
            transcript[line["object"].toString()].append(textOf(line));
    }
    return transcript;
}

/// By signal: what it has announced last.
QMap<QString, QString> lastSamples(const QVector<QJsonObject> &lines)
{
    QMap<QString, QString> samples;
    for (const QJsonObject &line : lines) {
        if (kSampled.contains(line["signal"].toString()))
            samples[line["signal"].toString()] = textOf(line);
    }
    return samples;
}

int sizeOf(const Transcript &transcript)
{
    int size = 0;
    for (const QStringList &announced : transcript)
        size += announced.size();
    return size;
}

/// What stands first in one transcript and not in the other; empty when they are the same.
QString difference(const Transcript &actual, const Transcript &expected)
{
    if (actual.keys() != expected.keys())
        return actual.keys().join(QLatin1Char(' ')) + QStringLiteral(" speak instead of ")
            + expected.keys().join(QLatin1Char(' '));
    for (auto object = expected.begin(); object != expected.end(); ++object) {
        const QStringList is = actual.value(object.key());
        const QStringList was = object.value();
        for (int i = 0; i < qMax(is.size(), was.size()); ++i) {
            if (is.value(i) != was.value(i))
                return QStringLiteral("%1, line %2: %3 instead of %4")
                    .arg(object.key(), QString::number(i + 1), is.value(i), was.value(i));
        }
    }
    return {};
}

/// The lines of a monitor that reads a recording; none when it does not end well or complains. A hint is no
/// complaint: it tells how the recorded link was.
QVector<QJsonObject> readRecording(const QString &path)
{
    Program monitor(QStringLiteral("canbus-monitor"), {"--read", path, "--json"});
    const bool endsWell = monitor.endsWell(30000);
    QList<QByteArray> complaints = monitor.complaints();
    const auto isHint = [](const QByteArray &line) { return line.startsWith("canbus-monitor: hint: "); };
    complaints.erase(std::remove_if(complaints.begin(), complaints.end(), isHint), complaints.end());
    if (endsWell && complaints.isEmpty())
        return monitor.objects();
    qWarning() << "reading" << path << "ends well:" << endsWell << complaints;
    return {};
}

auto isEvent(const QString &name)
{
    return [name](const QJsonObject &line) { return line["event"] == name; };
}

} // namespace

class EndToEndRecording : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void readsTheRecordingLikeTheRun();
    void replaysTheRecordingLikeTheRun();
    void readsWhatAKilledRecorderLeaves_data();
    void readsWhatAKilledRecorderLeaves();

private:
    QString file(const QString &name) const { return m_folder.filePath(name); }

    QTemporaryDir m_folder;
    QVector<QJsonObject> m_run;
};

void EndToEndRecording::initTestCase()
{
    Bench bench({"--silent-after", QString::number(kRecordedMs)});
    QVERIFY(bench.startBox());
    bench.startMonitor({"--record", file("run.pcapng")});
    QVERIFY(bench.waitForLink());
    QTRY_VERIFY_WITH_TIMEOUT(bench.box->hasObject(isEvent("silent")), 60000);
    // Everything that came before has been announced when the command is given up.
    bench.monitor->writeLine("climate.acBtn");
    QVERIFY(bench.waitForLink(false));
    bench.monitor->signal(SIGINT);
    QVERIFY(bench.monitor->endsWell());
    m_run = bench.monitor->objects();

    const Transcript run = transcriptOf(m_run);
    QCOMPARE(run.keys(), QStringList({"climate", "gauges", "host", "parking", "player", "vehicle"}));
    QCOMPARE(lastSamples(m_run).size(), kSampled.size());
}

void EndToEndRecording::readsTheRecordingLikeTheRun()
{
    const QVector<QJsonObject> lines = readRecording(file("run.pcapng"));

    QCOMPARE(difference(transcriptOf(lines), transcriptOf(m_run)), QString());
    QCOMPARE(lastSamples(lines), lastSamples(m_run));
}

void EndToEndRecording::replaysTheRecordingLikeTheRun()
{
    const Transcript run = transcriptOf(m_run);
    Bench bench({"--replay", file("run.pcapng")});
    QVERIFY(bench.startBox());
    bench.startMonitor({"--record", file("replay.pcapng")});
    QVERIFY(bench.waitForLink());
    QTRY_VERIFY_WITH_TIMEOUT(bench.box->hasObject(isEvent("note")), 60000);
    QTRY_VERIFY_WITH_TIMEOUT(sizeOf(transcriptOf(bench.monitor->objects())) >= sizeOf(run), 10000);
    QTRY_COMPARE_WITH_TIMEOUT(lastSamples(bench.monitor->objects()), lastSamples(m_run), 10000);
    // It is still answered, or the link would be lost.
    bench.monitor->writeLine("climate.acBtn");
    QTRY_VERIFY(
        bench.box->hasObject([](const QJsonObject &line) { return line["name"] == "climate.acBtn"; }));
    bench.monitor->signal(SIGINT);
    QVERIFY(bench.monitor->endsWell());

    QCOMPARE(difference(transcriptOf(bench.monitor->objects()), run), QString());
    QVERIFY(!bench.monitor->hasObject(Bench::isStatus(false)));
    QCOMPARE(difference(transcriptOf(readRecording(file("replay.pcapng"))), run), QString());
}

void EndToEndRecording::readsWhatAKilledRecorderLeaves_data()
{
    QTest::addColumn<int>("announcements");

    QTest::newRow("as the first frames come") << 3;
    QTest::newRow("amid the whole state") << 25;
    QTest::newRow("amid the drive") << 60;
}

void EndToEndRecording::readsWhatAKilledRecorderLeaves()
{
    QFETCH(int, announcements);
    const QString path = file(QStringLiteral("killed-%1.pcapng").arg(announcements));
    Bench bench;
    QVERIFY(bench.startBox());
    bench.startMonitor({"--record", path});
    QTRY_VERIFY_WITH_TIMEOUT(sizeOf(transcriptOf(bench.monitor->objects())) >= announcements, 30000);
    bench.monitor->signal(SIGKILL);
    QTRY_VERIFY(!bench.monitor->isRunning());

    canbus::recording::Recording recording;
    QString error;
    QVERIFY2(canbus::recording::read(path, &recording, &error), qPrintable(error));
    const Transcript heard = transcriptOf(bench.monitor->objects());
    const Transcript written = transcriptOf(readRecording(path));
    QVERIFY(sizeOf(written) >= announcements);
    for (auto object = heard.begin(); object != heard.end(); ++object)
        QCOMPARE(written.value(object.key()).mid(0, object.value().size()), object.value());
}

QTEST_GUILESS_MAIN(EndToEndRecording)
#include "tst_e2e_recording.moc"
