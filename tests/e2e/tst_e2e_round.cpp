#include "bench.h"

#include "drivenround.h"

#include <QtCore/QElapsedTimer>
#include <QtCore/QFile>
#include <QtCore/QJsonArray>
#include <QtCore/QJsonDocument>
#include <QtCore/QJsonObject>
#include <QtCore/QMetaMethod>
#include <QtTest/QTest>

#include <canbusplayer.h>
#include <velclimategroupcmd.h>
#include <velgaugesgroupcmd.h>
#include <velparkinggroupcmd.h>
#include <velvehiclegroupcmd.h>

// One full round of the built-in drive, from the box's process to the monitor's, compared with the transcript
// in golden/. That file was recorded from such a run and read line by line; CANBUS_RECORD_GOLDEN=FILE records
// a new one, to be read before it is committed.

namespace {

// Sampled by the group, 300 ms apart: what of them is seen depends on when the samples fall.
const QStringList kSampled {"gauges updateGaugeValue", "gauges updateGaugeValueText",
                            "gauges updateGaugeShift"};

/// By object and signal: the arguments in the order in which they were announced, repetitions left out.
using Transcript = QMap<QString, QStringList>;

QStringList updateSignalsOf(const QString &object, const QMetaObject &metaObject)
{
    QStringList names;
    for (int i = metaObject.methodOffset(); i < metaObject.methodCount(); ++i) {
        const QMetaMethod method = metaObject.method(i);
        if (method.methodType() == QMetaMethod::Signal && method.name().startsWith("update"))
            names.append(object + QLatin1Char(' ') + QString::fromLatin1(method.name()));
    }
    return names;
}

QStringList allUpdateSignals()
{
    return updateSignalsOf("player", canbus::CanBusPlayer::staticMetaObject)
        + updateSignalsOf("climate", canbus::VelClimateGroupCmd::staticMetaObject)
        + updateSignalsOf("gauges", canbus::VelGaugesGroupCmd::staticMetaObject)
        + updateSignalsOf("vehicle", canbus::VelVehicleGroupCmd::staticMetaObject)
        + updateSignalsOf("parking", canbus::VelParkingGroupCmd::staticMetaObject);
}

bool isAnnouncement(const QJsonObject &line)
{
    const QString name = line["signal"].toString();
    return name.startsWith("update") || name == QLatin1String("touch");
}

/// @param lastMs  how long after the first announcement the last one may come
Transcript transcriptOf(const QVector<QJsonObject> &lines, qint64 lastMs)
{
    Transcript transcript;
    const auto first = std::find_if(lines.begin(), lines.end(), isAnnouncement);
    for (const QJsonObject &line : lines) {
        const QString name = line["signal"].toString();
        if (!isAnnouncement(line)
            || (line["t"].toDouble() - (*first)["t"].toDouble()) * 1000 > double(lastMs))
            continue;
        QStringList &announced = transcript[line["object"].toString() + QLatin1Char(' ') + name];
        const QString arguments =
            QString::fromUtf8(QJsonDocument(line["args"].toObject()).toJson(QJsonDocument::Compact));
        if (announced.isEmpty() || announced.last() != arguments)
            announced.append(arguments);
    }
    return transcript;
}

Transcript readGolden(const QString &path)
{
    QFile file(path);
    Transcript golden;
    if (!file.open(QIODevice::ReadOnly))
        return golden;
    QString key;
    const QStringList lines = QString::fromUtf8(file.readAll()).split(QLatin1Char('\n'));
    for (const QString &line : lines) {
        if (line.startsWith("  "))
            golden[key].append(line.trimmed());
        else if (!line.isEmpty() && !line.startsWith('#'))
            key = line;
    }
    return golden;
}

void writeGolden(const QString &path, const Transcript &transcript)
{
    QFile file(path);
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write(
        "# One round of the built-in drive: by signal, what it announces, from the link's start on.\n");
    for (auto item = transcript.begin(); item != transcript.end(); ++item) {
        if (kSampled.contains(item.key()))
            continue;
        file.write(item.key().toUtf8() + '\n');
        QStringList announced = item.value();
        if (announced.size() > 1 && announced.last() == announced.first())
            announced.removeLast();
        for (const QString &arguments : qAsConst(announced))
            file.write("  " + arguments.toUtf8() + '\n');
    }
}

/// What the sampled signals may announce in a round, as the drive has it.
Transcript sampledByDrive()
{
    Transcript transcript;
    const auto announce = [&transcript](int sampled, const QJsonObject &arguments) {
        transcript[kSampled.at(sampled)].append(
            QString::fromUtf8(QJsonDocument(arguments).toJson(QJsonDocument::Compact)));
    };
    // All three are announced when the first of them arrives: the others with what they start with.
    announce(0, {{"arg1", QJsonArray()}});
    announce(1, {{"arg1", QJsonArray()}});
    announce(2, {{"Shift", false}});
    for (qint64 ms = 0; ms < drivenround::kRoundMs; ms += drivenround::kStepMs) {
        const boxsim::GaugesState gauges = drivenround::driveAt(ms).gauges;
        QJsonArray values;
        for (const quint8 value : gauges.values)
            values.append(value);
        announce(0, {{"arg1", values}});
        announce(1, {{"arg1", QJsonArray::fromStringList(gauges.valueTexts)}});
        announce(2, {{"Shift", gauges.shift}});
    }
    return transcript;
}

/// How far `announced` follows `round`, which repeats for ever, from some place in it on without leaving
/// anything out.
int longestWalk(const QStringList &round, const QStringList &announced)
{
    int longest = 0;
    for (int start = 0; start < round.size(); ++start) {
        int length = 0;
        while (length < announced.size() && announced.at(length) == round.at((start + length) % round.size()))
            ++length;
        longest = qMax(longest, length);
    }
    return longest;
}

} // namespace

class EndToEndRound : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void aRoundOfTheDriveIsAnnouncedAsItAlwaysWas()
    {
        Bench bench;
        QVERIFY(bench.startBox());
        bench.startMonitor();
        QVERIFY(bench.waitForLink());
        const auto isFullRound = [&bench, since = QElapsedTimer()]() mutable {
            if (!since.isValid())
                since.start();
            bench.monitor->lines();
            return since.hasExpired(drivenround::kRoundMs + 5000);
        };
        QVERIFY(QTest::qWaitFor(isFullRound, drivenround::kRoundMs + 60000));
        const QVector<QJsonObject> lines = bench.monitor->objects();
        if (qEnvironmentVariableIsSet("CANBUS_RECORD_GOLDEN")) {
            const Transcript round = transcriptOf(lines, drivenround::kRoundMs - drivenround::kStepMs / 2);
            writeGolden(qEnvironmentVariable("CANBUS_RECORD_GOLDEN"), round);
        }
        const Transcript transcript = transcriptOf(lines, 2 * drivenround::kRoundMs);

        for (const QString &name : allUpdateSignals())
            QVERIFY2(transcript.contains(name), qPrintable(name + " was never announced"));
        compareWithGolden(transcript);
        compareWithDrive(transcript);
    }

private:
    static void compareWithGolden(const Transcript &transcript)
    {
        const Transcript golden =
            readGolden(QStringLiteral(CANBUS_SOURCE_DIR "/tests/e2e/golden/builtin-drive.txt"));
        QStringList expected = golden.keys() + kSampled;
        expected.sort();
        QCOMPARE(transcript.keys(), expected);
        for (auto item = golden.begin(); item != golden.end(); ++item) {
            const QStringList announced = transcript.value(item.key());
            const int followed = longestWalk(item.value(), announced);
            QVERIFY2(followed == announced.size() && followed >= item.value().size(),
                     qPrintable(item.key() + " differs at " + announced.value(followed)));
        }
    }

    static void compareWithDrive(const Transcript &transcript)
    {
        const Transcript driven = sampledByDrive();
        for (const QString &name : kSampled) {
            for (const QString &arguments : transcript.value(name))
                QVERIFY2(driven.value(name).contains(arguments), qPrintable(name + ' ' + arguments));
            QVERIFY2(transcript.value(name).size() > 1, qPrintable(name));
        }
    }
};

QTEST_GUILESS_MAIN(EndToEndRound)
#include "tst_e2e_round.moc"
