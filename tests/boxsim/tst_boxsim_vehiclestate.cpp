#include "boxsim/car/vehiclestate.h"

#include "hexbytes.h"

#include <QtTest/QTest>

using boxsim::VehicleState;

namespace {

void row(const char *name, const VehicleState &state, const char *payload)
{
    QTest::newRow(name) << state << bytes(payload);
}

template <class T>
VehicleState with(T VehicleState::*item, T value)
{
    VehicleState state;
    state.*item = value;
    return state;
}

VehicleState everyItemDifferent()
{
    VehicleState state;
    state.title = QStringLiteral("T");
    state.labels = QStringList {"L"};
    state.doors = {false, true, false, true};
    state.hood = true;
    state.trunk = true;
    state.tires = {1, 2, 3, 0};
    state.checkEngine = 3;
    state.battery = true;
    state.labelState1 = 1;
    state.labelState2 = 2;
    state.tireTexts = QStringList {"2.4", "1.1"};
    return state;
}

} // namespace

Q_DECLARE_METATYPE(boxsim::VehicleState)

class TestBoxsimVehicleState : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void writesTitleAndLabels();
    void writesEachItemToItsBits_data();
    void writesEachItemToItsBits();
    void takesOverWhatChangedAndNothingElse();
    void takesOverEveryItem();
    void tellsStatesApart();
};

void TestBoxsimVehicleState::writesTitleAndLabels()
{
    QCOMPARE(boxsim::vehicleTitlePayload(VehicleState()), bytes("00"));
    QCOMPARE(boxsim::vehicleTitlePayload(with(&VehicleState::title, QStringLiteral("Aü"))),
             bytes("41 c3bc 00"));
    QCOMPARE(boxsim::vehicleLabelsPayload(VehicleState()), QByteArray());
    QCOMPARE(boxsim::vehicleLabelsPayload(with(&VehicleState::labels, QStringList {"A", "", "B"})),
             bytes("41 00 00 42 00"));
}

void TestBoxsimVehicleState::writesEachItemToItsBits_data()
{
    QTest::addColumn<VehicleState>("state");
    QTest::addColumn<QByteArray>("payload");

    using State = VehicleState;
    using Doors = std::array<bool, 4>;
    using Tires = std::array<quint8, 4>;
    row("nothing", State(), "00 00 00");
    row("door 1", with<Doors>(&State::doors, {true, false, false, false}), "01 00 00");
    row("door 2", with<Doors>(&State::doors, {false, true, false, false}), "02 00 00");
    row("door 3", with<Doors>(&State::doors, {false, false, true, false}), "04 00 00");
    row("door 4", with<Doors>(&State::doors, {false, false, false, true}), "08 00 00");
    row("hood", with(&State::hood, true), "10 00 00");
    row("trunk", with(&State::trunk, true), "20 00 00");
    row("tire 1", with<Tires>(&State::tires, {3, 0, 0, 0}), "00 03 00");
    row("tire 2", with<Tires>(&State::tires, {0, 3, 0, 0}), "00 0c 00");
    row("tire 3", with<Tires>(&State::tires, {0, 0, 3, 0}), "00 30 00");
    row("tire 4", with<Tires>(&State::tires, {0, 0, 0, 3}), "00 c0 00");
    row("low bits of the tires", with<Tires>(&State::tires, {1, 1, 1, 1}), "00 55 00");
    row("check engine", with<quint8>(&State::checkEngine, 3), "00 00 03");
    row("low bit of check engine", with<quint8>(&State::checkEngine, 1), "00 00 01");
    row("battery", with(&State::battery, true), "00 00 04");
    row("label state 1", with<quint8>(&State::labelState1, 3), "00 00 30");
    row("low bit of label state 1", with<quint8>(&State::labelState1, 1), "00 00 10");
    row("label state 2", with<quint8>(&State::labelState2, 3), "00 00 c0");
    row("low bit of label state 2", with<quint8>(&State::labelState2, 1), "00 00 40");
    row("a check-engine state with more bits than it has room for", with<quint8>(&State::checkEngine, 7),
        "00 00 03");
    row("tire texts", with(&State::tireTexts, QStringList {"2.4", "", QStringLiteral("ü")}),
        "00 00 00 322e34 00 00 c3bc 00");
    row("every item different", everyItemDifferent(), "3a 39 97 322e34 00 312e31 00");
}

void TestBoxsimVehicleState::writesEachItemToItsBits()
{
    QFETCH(VehicleState, state);
    QFETCH(QByteArray, payload);
    QCOMPARE(boxsim::vehicleDataPayload(state).toHex(' '), payload.toHex(' '));
}

void TestBoxsimVehicleState::takesOverWhatChangedAndNothingElse()
{
    VehicleState state = everyItemDifferent();
    const VehicleState before;
    VehicleState after;
    after.tires[3] = 2;
    after.doors[0] = true;

    boxsim::applyChanges(state, before, after);

    VehicleState expected = everyItemDifferent();
    expected.tires = {1, 2, 3, 2};
    expected.doors = {true, true, false, true};
    QVERIFY(state == expected);
}

void TestBoxsimVehicleState::takesOverEveryItem()
{
    VehicleState state;

    boxsim::applyChanges(state, VehicleState(), everyItemDifferent());

    QVERIFY(state == everyItemDifferent());
    QCOMPARE(boxsim::vehicleTitlePayload(state), bytes("54 00"));
    QCOMPARE(boxsim::vehicleLabelsPayload(state), bytes("4c 00"));
    QCOMPARE(boxsim::vehicleDataPayload(state), bytes("3a 39 97 322e34 00 312e31 00"));
}

void TestBoxsimVehicleState::tellsStatesApart()
{
    QVERIFY(VehicleState() == VehicleState());
    QVERIFY(!(with(&VehicleState::battery, true) == VehicleState()));
    QVERIFY(!(with(&VehicleState::tireTexts, QStringList {"A"}) == VehicleState()));
}

QTEST_GUILESS_MAIN(TestBoxsimVehicleState)
#include "tst_boxsim_vehiclestate.moc"
