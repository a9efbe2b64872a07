#include "boxsim/car/parkingstate.h"

#include "hexbytes.h"

#include <QtTest/QTest>

using boxsim::ParkingState;
using boxsim::ParkingZones;

namespace {

void row(const char *name, const ParkingState &state, const char *payload)
{
    QTest::newRow(name) << state << bytes(payload);
}

template <class T>
ParkingState with(T ParkingState::*item, T value)
{
    ParkingState state;
    state.*item = value;
    return state;
}

ParkingState everyItemDifferent()
{
    ParkingState state;
    state.title = QStringLiteral("T");
    state.labels = QStringList {"L"};
    state.front = {1, 2, 3, 4};
    state.rear = {5, 6, 7, 8};
    state.left = {9, 10, 11, 12};
    state.right = {13, 14, 0x9F, 255};
    state.labelState1 = 2;
    state.labelState2 = 3;
    state.sensors = {true, false, true, false};
    return state;
}

} // namespace

Q_DECLARE_METATYPE(boxsim::ParkingState)

class TestBoxsimParkingState : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void writesTitleAndLabels();
    void writesEachItemToItsBits_data();
    void writesEachItemToItsBits();
    void takesOverWhatChangedAndNothingElse();
    void takesOverEveryItem();
    void tellsStatesApart();
};

void TestBoxsimParkingState::writesTitleAndLabels()
{
    QCOMPARE(boxsim::parkingTitlePayload(ParkingState()), bytes("00"));
    QCOMPARE(boxsim::parkingTitlePayload(with(&ParkingState::title, QStringLiteral("Aü"))),
             bytes("41 c3bc 00"));
    QCOMPARE(boxsim::parkingLabelsPayload(ParkingState()), QByteArray());
    QCOMPARE(boxsim::parkingLabelsPayload(with(&ParkingState::labels, QStringList {"A", "", "B"})),
             bytes("41 00 00 42 00"));
}

void TestBoxsimParkingState::writesEachItemToItsBits_data()
{
    QTest::addColumn<ParkingState>("state");
    QTest::addColumn<QByteArray>("payload");

    using State = ParkingState;
    using Flags = std::array<bool, 4>;
    row("nothing", State(), "00000000 00000000 00000000 00000000 00");
    row("front", with<ParkingZones>(&State::front, {1, 2, 3, 0x9F}),
        "0102039f 00000000 00000000 00000000 00");
    row("rear", with<ParkingZones>(&State::rear, {1, 2, 3, 4}), "00000000 01020304 00000000 00000000 00");
    row("left", with<ParkingZones>(&State::left, {1, 2, 3, 4}), "00000000 00000000 01020304 00000000 00");
    row("right", with<ParkingZones>(&State::right, {1, 2, 3, 255}), "00000000 00000000 00000000 010203ff 00");
    row("label state 1", with<quint8>(&State::labelState1, 3), "00000000 00000000 00000000 00000000 03");
    row("label state 2", with<quint8>(&State::labelState2, 3), "00000000 00000000 00000000 00000000 0c");
    row("low bit of label state 2", with<quint8>(&State::labelState2, 1),
        "00000000 00000000 00000000 00000000 04");
    row("a label state with more bits than it has room for", with<quint8>(&State::labelState1, 5),
        "00000000 00000000 00000000 00000000 01");
    row("sensor flag 1", with<Flags>(&State::sensors, {true, false, false, false}),
        "00000000 00000000 00000000 00000000 10");
    row("sensor flag 2", with<Flags>(&State::sensors, {false, true, false, false}),
        "00000000 00000000 00000000 00000000 20");
    row("sensor flag 3", with<Flags>(&State::sensors, {false, false, true, false}),
        "00000000 00000000 00000000 00000000 40");
    row("sensor flag 4", with<Flags>(&State::sensors, {false, false, false, true}),
        "00000000 00000000 00000000 00000000 80");
    row("every item different", everyItemDifferent(), "01020304 05060708 090a0b0c 0d0e9fff 5e");
}

void TestBoxsimParkingState::writesEachItemToItsBits()
{
    QFETCH(ParkingState, state);
    QFETCH(QByteArray, payload);
    QCOMPARE(boxsim::parkingDataPayload(state).toHex(' '), payload.toHex(' '));
}

void TestBoxsimParkingState::takesOverWhatChangedAndNothingElse()
{
    ParkingState state = everyItemDifferent();
    const ParkingState before;
    ParkingState after;
    after.rear[1] = 99;
    after.sensors[3] = true;

    boxsim::applyChanges(state, before, after);

    ParkingState expected = everyItemDifferent();
    expected.rear = {5, 99, 7, 8};
    expected.sensors = {true, false, true, true};
    QVERIFY(state == expected);
}

void TestBoxsimParkingState::takesOverEveryItem()
{
    ParkingState state;

    boxsim::applyChanges(state, ParkingState(), everyItemDifferent());

    QVERIFY(state == everyItemDifferent());
    QCOMPARE(boxsim::parkingTitlePayload(state), bytes("54 00"));
    QCOMPARE(boxsim::parkingLabelsPayload(state), bytes("4c 00"));
    QCOMPARE(boxsim::parkingDataPayload(state), bytes("01020304 05060708 090a0b0c 0d0e9fff 5e"));
}

void TestBoxsimParkingState::tellsStatesApart()
{
    QVERIFY(ParkingState() == ParkingState());
    QVERIFY(!(with<quint8>(&ParkingState::labelState2, 1) == ParkingState()));
    QVERIFY(!(with(&ParkingState::title, QStringLiteral("A")) == ParkingState()));
}

QTEST_GUILESS_MAIN(TestBoxsimParkingState)
#include "tst_boxsim_parkingstate.moc"
