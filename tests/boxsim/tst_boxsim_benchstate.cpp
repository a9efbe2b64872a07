#include "boxsim/fields/benchstate.h"

#include <QtTest/QTest>

using boxsim::Assignment;
using boxsim::BenchState;
using boxsim::Field;

/// What setting a field brings about.
class TestBoxsimBenchState : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void setsOneEntryAndNoOther_data();
    void setsOneEntryAndNoOther();
    void showsAMeasurementOnTheGauges();
    void leavesWhatWasSetDirectlyWhenAMeasurementDoesNotShow();
    void replacesWhatWasSetDirectlyWhenAMeasurementShows();
    void turnsAGaugeToItsOtherFace();
};

namespace {

Assignment assignment(const QString &name, const QString &text)
{
    Assignment made;
    QString error;
    if (!boxsim::assignText(name, text, &made, &error))
        qFatal("%s", qPrintable(error));
    return made;
}

void set(BenchState &state, const QString &name, const QString &text)
{
    boxsim::apply(state, assignment(name, text));
}

} // namespace

void TestBoxsimBenchState::setsOneEntryAndNoOther_data()
{
    QTest::addColumn<int>("field");
    for (int field = 0; field < boxsim::allFields().size(); ++field) {
        if (boxsim::allFields().at(field).count > 1)
            QTest::newRow(qPrintable(boxsim::allFields().at(field).name)) << field;
    }
}

void TestBoxsimBenchState::setsOneEntryAndNoOther()
{
    QFETCH(int, field);
    const Field &row = boxsim::allFields().at(field);
    const bool isFlag = row.kind == boxsim::FieldKind::Flag;
    for (int entry = 0; entry < row.count; ++entry) {
        BenchState state;
        QVariantList expected = boxsim::valueOf(state, field, -1).toList();
        QCOMPARE(expected.size(), row.count);
        const QVariant value = isFlag ? QVariant(!expected.at(entry).toBool()) : QVariant(1);
        expected[entry] = value;
        boxsim::apply(state, {field, entry, value});
        QCOMPARE(boxsim::valueOf(state, field, -1).toList(), expected);
        QCOMPARE(boxsim::valueOf(state, field, entry), value);
    }
}

void TestBoxsimBenchState::showsAMeasurementOnTheGauges()
{
    BenchState state;
    set(state, "measured.speed", "100");
    QCOMPARE(int(state.car.gauges.values[boxsim::CenterGauge]), 127);
    QCOMPARE(state.car.gauges.valueTexts.value(0), QString("100 km/h"));
    QVERIFY(state.car.gauges.scale.isEmpty());
    set(state, "measured.engineSpeed", "3600");
    QVERIFY(state.car.gauges.shift);
    QCOMPARE(int(state.car.gauges.peakColor), 5);
}

void TestBoxsimBenchState::leavesWhatWasSetDirectlyWhenAMeasurementDoesNotShow()
{
    BenchState state;
    set(state, "measured.speed", "100");
    set(state, "gauges.value.1", "9");
    set(state, "gauges.valueTexts", "nine");
    set(state, "gauges.value.2", "8");
    set(state, "measured.speed", "100"); // the same again
    set(state, "measured.boost", "10");  // on the other face
    QCOMPARE(int(state.car.gauges.values[boxsim::CenterGauge]), 9);
    QCOMPARE(int(state.car.gauges.values[boxsim::TopLeftGauge]), 8);
    QCOMPARE(state.car.gauges.valueTexts, QStringList({"nine"}));
}

void TestBoxsimBenchState::replacesWhatWasSetDirectlyWhenAMeasurementShows()
{
    BenchState state;
    set(state, "gauges.value", "9,8,7,6,5");
    set(state, "gauges.title", "Dials");
    set(state, "measured.speed", "200");
    QCOMPARE(boxsim::valueOf(state, assignment("gauges.value.1", "0").field, -1).toList(),
             QVariantList({255, 8, 7, 6, 5}));
    QCOMPARE(state.car.gauges.title, QString("Dials"));
}

void TestBoxsimBenchState::turnsAGaugeToItsOtherFace()
{
    BenchState state;
    set(state, "measured.boost", "5");
    QCOMPARE(int(state.car.gauges.values[boxsim::TopLeftGauge]), 0);
    set(state, "measured.face.2", "1");
    QCOMPARE(int(state.car.gauges.values[boxsim::TopLeftGauge]), 127);
    QCOMPARE(int(state.car.gauges.zeroPositions[boxsim::TopLeftGauge]), 85);
    QVERIFY(state.car.gauges.formats[boxsim::TopLeftGauge]);
    QCOMPARE(state.car.gauges.topTexts, QStringList({"Boost", "Oil"}));
    QCOMPARE(state.car.gauges.valueTexts.value(1), QString("0.5 bar"));
}

QTEST_GUILESS_MAIN(TestBoxsimBenchState)
#include "tst_boxsim_benchstate.moc"
