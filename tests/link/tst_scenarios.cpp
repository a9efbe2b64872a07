#include "simulatedheadunit.h"
#include "simulatedline.h"

#include "boxsim/bench/bench.h"
#include "boxsim/bench/report.h"
#include "boxsim/scenario/scenarioplayer.h"
#include "link/frameformat.h"

#include <QtCore/QDir>
#include <QtTest/QTest>

// The scenarios of scenarios/, each led to its end with a head unit on the line, in virtual time.

namespace {

const QString kFolder = QStringLiteral(CANBUS_SOURCE_DIR "/scenarios/");

boxsim::Scenario load(const QString &file)
{
    boxsim::Scenario scenario;
    QString error;
    if (!boxsim::loadScenario(kFolder + file, &scenario, &error))
        qFatal("%s", qPrintable(error));
    return scenario;
}

boxsim::BenchOptions optionsOf(const boxsim::Scenario &scenario)
{
    boxsim::BenchOptions options;
    if (scenario.hasSeed)
        options.box.seed = scenario.seed;
    return options;
}

/// The fields of `fault` that are not as they are in a sound box.
QStringList faultsIn(const boxsim::BenchState &state)
{
    static const boxsim::BenchState sound;
    QStringList faults;
    for (int field = 0; field < boxsim::allFields().size(); ++field) {
        const QString &name = boxsim::allFields().at(field).name;
        if (name.startsWith(QLatin1String("fault."))
            && boxsim::valueOf(state, field, -1) != boxsim::valueOf(sound, field, -1))
            faults.append(name);
    }
    return faults;
}

/// A head unit and a bench that a scenario leads.
class Run {
public:
    explicit Run(const QString &file)
        : Run(load(file))
    {
    }

    /// Runs until the condition holds or the scenario ends. @return whether the condition held within the
    /// time
    template <class Condition>
    bool runUntil(Condition &&condition, int ms)
    {
        for (const qint64 end = nowMs + ms; nowMs < end && bench.ending() == boxsim::Ending::None; step()) {
            if (condition())
                return true;
        }
        return condition();
    }

    bool hasTold(boxsim::Event::Kind kind, const QString &reason = {}) const
    {
        return std::any_of(events.begin(), events.end(), [&](const boxsim::Event &event) {
            return event.kind == kind && (reason.isEmpty() || event.reason == reason);
        });
    }

    /// How often the events came, by name.
    int count(boxsim::Event::Kind kind) const
    {
        return int(std::count_if(events.begin(), events.end(),
                                 [kind](const boxsim::Event &event) { return event.kind == kind; }));
    }

    void step()
    {
        nowMs += SimulatedLine::kTickMs;
        headUnit.receive(toHeadUnit.deliver());
        headUnit.advance(nowMs);
        toBox.write(headUnit.takeWritten());
        const boxsim::BenchOutput output = bench.receive(toBox.deliver(), nowMs);
        for (const boxsim::LineStep &one : output.line)
            take(one);
        events += output.events;
    }

    boxsim::Bench bench;
    SimulatedHeadUnit headUnit;
    QVector<boxsim::Event> events;
    qint64 nowMs = 0;

private:
    explicit Run(const boxsim::Scenario &scenario)
        : bench(optionsOf(scenario), std::make_unique<boxsim::ScenarioPlayer>(scenario))
    {
    }

    void take(const boxsim::LineStep &one)
    {
        toHeadUnit.write(one.bytes);
        // A head unit that opens the port again begins anew.
        if (one.kind == boxsim::LineStep::Kind::Return)
            headUnit = SimulatedHeadUnit();
    }

    SimulatedLine toBox {1};
    SimulatedLine toHeadUnit {2};
};

QByteArray button(quint8 button, quint8 value)
{
    return canbus::frame::FrameWriter(0x50).plain(0x93).plain(0).plain(button).plain(1).plain(value).finish();
}

} // namespace

class Scenarios : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void beginSoundFailAndRecover_data()
    {
        QTest::addColumn<QString>("file");

        const QStringList files = QDir(kFolder + "faults").entryList({QStringLiteral("*.json")}, QDir::Files);
        QVERIFY(!files.isEmpty());
        for (const QString &file : files)
            QTest::newRow(qPrintable(file)) << "faults/" + file;
    }

    void beginSoundFailAndRecover()
    {
        QFETCH(QString, file);
        Run run(file);

        QVERIFY(run.runUntil([&] { return run.headUnit.isLinkUp(); }, 3000));
        const qint64 upMs = run.nowMs;
        const auto isWrong = [&run] {
            return !faultsIn(run.bench.state()).isEmpty() || run.hasTold(boxsim::Event::Kind::Restart)
                || run.hasTold(boxsim::Event::Kind::HangUp);
        };
        QVERIFY(run.runUntil(isWrong, 5000));
        QVERIFY2(run.nowMs - upMs >= 2900, qPrintable(QString::number(run.nowMs - upMs)));
        run.runUntil([] { return false; }, 60000);

        QCOMPARE(run.bench.failure(), QString());
        QCOMPARE(run.bench.ending(), boxsim::Ending::Success);
        QCOMPARE(faultsIn(run.bench.state()), QStringList());
        QVERIFY(run.hasTold(boxsim::Event::Kind::Note, QStringLiteral("recovered")));
        QVERIFY(run.headUnit.isLinkUp());
        QVERIFY2(run.nowMs - upMs >= 15000 && run.nowMs - upMs <= 31000,
                 qPrintable(QString::number(run.nowMs - upMs)));
    }

    void makeTheHeadUnitFeelTheFault_data()
    {
        using Kind = boxsim::Event::Kind;
        QTest::addColumn<QString>("file");
        QTest::addColumn<int>("event");

        const auto row = [](const char *file, Kind event) {
            QTest::newRow(file) << QStringLiteral("faults/%1.json").arg(QLatin1String(file)) << int(event);
        };
        row("answers-all-dropped", Kind::LinkDown);
        row("answers-some-dropped", Kind::Fault);
        row("answers-first-dropped", Kind::Fault);
        row("answers-nack", Kind::Fault);
        row("answers-wrong-id", Kind::LinkDown);
        row("check-bytes-wrong", Kind::Resend);
        row("bytes-flipped", Kind::Resend);
        row("bytes-lost", Kind::Resend);
        row("bytes-doubled", Kind::Resend);
        row("bytes-inserted", Kind::Resend);
        row("frames-split", Kind::Fault);
        row("silence", Kind::LinkDown);
        row("noise", Kind::Fault);
        row("not-ready", Kind::LinkDown);
        row("restart", Kind::LinkDown);
        row("hang-up", Kind::LinkDown);
    }

    void makeTheHeadUnitFeelTheFault()
    {
        QFETCH(QString, file);
        QFETCH(int, event);
        Run run(file);

        run.runUntil([] { return false; }, 60000);

        QVERIFY(run.count(boxsim::Event::Kind(event)) > 0);
    }

    void failWithoutAHeadUnitAfterAMinute()
    {
        boxsim::Bench bench({}, std::make_unique<boxsim::ScenarioPlayer>(load("faults/noise.json")));

        bench.advance(59999);
        QCOMPARE(bench.ending(), boxsim::Ending::None);
        bench.advance(60000);
        QCOMPARE(bench.ending(), boxsim::Ending::Failure);
        QCOMPARE(bench.failure(), QStringLiteral("no head unit has connected"));
    }

    void failWhenTheHeadUnitDoesNotComeBack()
    {
        Run run("faults/restart.json");
        QVERIFY(run.runUntil([&] { return run.hasTold(boxsim::Event::Kind::Restart); }, 20000));
        while (run.bench.ending() == boxsim::Ending::None)
            run.bench.advance(++run.nowMs);

        QCOMPARE(run.bench.ending(), boxsim::Ending::Failure);
        QCOMPARE(run.bench.failure(), QStringLiteral("the link has not come back"));
    }

    void goOnForAnHour_data()
    {
        QTest::addColumn<QString>("file");

        for (const char *file : {"builtin-drive.json", "parking-manoeuvre.json", "warning-lamps.json",
                                 "long-texts.json", "endurance.json"})
            QTest::newRow(file) << QString::fromLatin1(file);
    }

    void goOnForAnHour()
    {
        QFETCH(QString, file);
        Run run(file);

        run.runUntil([] { return false; }, 3600 * 1000);

        QCOMPARE(run.bench.failure(), QString());
        QCOMPARE(run.bench.ending(), boxsim::Ending::None);
        QVERIFY(run.headUnit.isLinkUp());
        QCOMPARE(run.count(boxsim::Event::Kind::GiveUp), 0);
        const int before = run.headUnit.reports.size();
        run.runUntil([] { return false; }, 5000);
        QVERIFY(run.headUnit.reports.size() > before);
    }

    void wakeACarUp()
    {
        Run run("cold-start.json");
        run.runUntil([] { return false; }, 60000);

        QCOMPARE(run.bench.ending(), boxsim::Ending::Success);
        QVERIFY(run.headUnit.isLinkUp());
        QCOMPARE(run.bench.state().car.gauges.valueTexts.at(1), QStringLiteral("31 °C"));
        QVERIFY(!run.bench.state().car.vehicle.battery);
        const auto isRequest = [](const boxsim::Event &event) {
            return event.command.name == QLatin1String("connection.request");
        };
        QCOMPARE(std::count_if(run.events.begin(), run.events.end(), isRequest), 4);
    }

    void askForButtons()
    {
        Run run("wait-for-button.json");
        const auto note = [&run](const char *text, quint8 pressed, quint8 value) {
            const QString reason = QString::fromLatin1(text);
            if (!run.runUntil([&] { return run.hasTold(boxsim::Event::Kind::Note, reason); }, 10000))
                return false;
            return run.headUnit.send(button(pressed, value));
        };

        QVERIFY(note("press A/C", 0x12, 0));
        QVERIFY(note("press one of the two labels", 0x17, 0));
        QVERIFY(note("the right one", 0x1B, 21));
        QVERIFY(note("that was not 22", 0x1B, 22));
        QVERIFY(run.runUntil([&] { return run.bench.ending() == boxsim::Ending::Success; }, 5000));
        QCOMPARE(run.bench.state().car.climate.title, QStringLiteral("Done"));
        QCOMPARE(int(run.bench.state().car.climate.rightHeatedSeat), 3);
    }

    void failWhenNoButtonIsPressed()
    {
        Run run("wait-for-button.json");
        run.runUntil([] { return false; }, 70000);

        QCOMPARE(run.bench.failure(), QStringLiteral("A/C was not pressed within a minute"));
    }
};

QTEST_GUILESS_MAIN(Scenarios)
#include "tst_scenarios.moc"
