#include "boxsim/car/climatestate.h"

#include "hexbytes.h"

#include <QtTest/QTest>

using boxsim::ClimateState;

namespace {

void row(const char *name, const ClimateState &state, const char *payload)
{
    QTest::newRow(name) << state << bytes(payload);
}

template <class T>
ClimateState with(T ClimateState::*item, T value)
{
    ClimateState state;
    state.*item = value;
    return state;
}

ClimateState withTitle(quint8 type, const QString &title)
{
    ClimateState state;
    state.type = type;
    state.title = title;
    return state;
}

ClimateState everyItemDifferent()
{
    ClimateState state = withTitle(7, QStringLiteral("T"));
    state.labels = QStringList {"L"};
    state.mainTemp = 0x012C;
    state.secondTemp = 0x9F01;
    state.mainUnit = 1;
    state.secondUnit = 2;
    state.leftHeatedSeat = 1;
    state.rightHeatedSeat = 2;
    state.leftCooledSeat = 3;
    state.rightCooledSeat = 8;
    state.fanDirectValue = 200;
    state.fanSpeedStatus = 3;
    state.ventPosition = 5;
    state.fanDirect = 1;
    state.systemOn = true;
    state.driverSeat = true;
    state.manualTemp = 0x9F;
    state.buttons = {1, 2, 3, 0, 1, 2, 3, 0, 1, 2, 3, 0, 1, 2, 3, 0, 1, 2, 3, 1};
    return state;
}

} // namespace

Q_DECLARE_METATYPE(boxsim::ClimateState)

class TestBoxsimClimateState : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void writesTypeAndTitle_data();
    void writesTypeAndTitle();
    void writesLabels_data();
    void writesLabels();
    void writesEachItemToItsBits_data();
    void writesEachItemToItsBits();
    void writesEachButtonToItsBits_data();
    void writesEachButtonToItsBits();
    void takesOverWhatChangedAndNothingElse();
    void takesOverEveryItem();
};

void TestBoxsimClimateState::writesTypeAndTitle_data()
{
    QTest::addColumn<ClimateState>("state");
    QTest::addColumn<QByteArray>("payload");

    row("no title", withTitle(0, QString()), "00 00");
    row("a type and a title", withTitle(3, QStringLiteral("Air")), "03 416972 00");
    row("a title in UTF-8", withTitle(0x9F, QStringLiteral("ü空")), "9f c3bc e7a9ba 00");
}

void TestBoxsimClimateState::writesTypeAndTitle()
{
    QFETCH(ClimateState, state);
    QFETCH(QByteArray, payload);
    QCOMPARE(boxsim::climateTypePayload(state), payload);
}

void TestBoxsimClimateState::writesLabels_data()
{
    QTest::addColumn<ClimateState>("state");
    QTest::addColumn<QByteArray>("payload");

    row("none", with(&ClimateState::labels, QStringList()), "");
    row("two", with(&ClimateState::labels, QStringList {"A", "B"}), "41 00 42 00");
    row("an empty one between others", with(&ClimateState::labels, QStringList {"A", "", "B"}),
        "41 00 00 42 00");
    row("UTF-8", with(&ClimateState::labels, QStringList {QStringLiteral("Я")}), "d0af 00");
}

void TestBoxsimClimateState::writesLabels()
{
    QFETCH(ClimateState, state);
    QFETCH(QByteArray, payload);
    QCOMPARE(boxsim::climateLabelsPayload(state), payload);
}

void TestBoxsimClimateState::writesEachItemToItsBits_data()
{
    QTest::addColumn<ClimateState>("state");
    QTest::addColumn<QByteArray>("payload");

    using State = ClimateState;
    row("all zero", State(), "0000 0000 00 00 00 00 00 00 00 00 00 00 00");
    row("main temperature", with<quint16>(&State::mainTemp, 300),
        "012c 0000 00 00 00 00 00 00 00 00 00 00 00");
    row("second temperature", with<quint16>(&State::secondTemp, 0x9F03),
        "0000 9f03 00 00 00 00 00 00 00 00 00 00 00");
    row("main unit", with<quint8>(&State::mainUnit, 2), "0000 0000 80 00 00 00 00 00 00 00 00 00 00");
    row("second unit", with<quint8>(&State::secondUnit, 3), "0000 0000 30 00 00 00 00 00 00 00 00 00 00");
    row("left heated seat", with<quint8>(&State::leftHeatedSeat, 8),
        "0000 0000 00 00 80 00 00 00 00 00 00 00 00");
    row("right heated seat", with<quint8>(&State::rightHeatedSeat, 7),
        "0000 0000 00 00 07 00 00 00 00 00 00 00 00");
    row("a seat level that the head unit does not define", with<quint8>(&State::leftHeatedSeat, 9),
        "0000 0000 00 00 90 00 00 00 00 00 00 00 00");
    row("left cooled seat", with<quint8>(&State::leftCooledSeat, 5),
        "0000 0000 00 00 00 50 00 00 00 00 00 00 00");
    row("right cooled seat", with<quint8>(&State::rightCooledSeat, 6),
        "0000 0000 00 00 00 06 00 00 00 00 00 00 00");
    row("fan direct value", with<quint8>(&State::fanDirectValue, 255),
        "0000 0000 00 00 00 00 ff 00 00 00 00 00 00");
    row("fan speed", with<quint8>(&State::fanSpeedStatus, 3), "0000 0000 00 00 00 00 00 c0 00 00 00 00 00");
    row("vent position", with<quint8>(&State::ventPosition, 8), "0000 0000 00 00 00 00 00 00 80 00 00 00 00");
    row("fan direct", with<quint8>(&State::fanDirect, 2), "0000 0000 00 00 00 00 00 00 00 00 02 00 00");
    row("system on", with(&State::systemOn, true), "0000 0000 00 00 00 00 00 00 00 00 00 10 00");
    row("driver seat", with(&State::driverSeat, true), "0000 0000 00 00 00 00 00 00 00 00 00 20 00");
    row("manual temperature", with<quint8>(&State::manualTemp, 0x9F),
        "0000 0000 00 00 00 00 00 00 00 00 00 00 9f");
    row("a unit with more bits than it has room for", with<quint8>(&State::mainUnit, 7),
        "0000 0000 c0 00 00 00 00 00 00 00 00 00 00");
    row("every item different", everyItemDifferent(), "012c 9f01 66 c6 12 38 c8 f1 5b 1b 19 37 9f");
}

void TestBoxsimClimateState::writesEachItemToItsBits()
{
    QFETCH(ClimateState, state);
    QFETCH(QByteArray, payload);
    QCOMPARE(boxsim::climateDataPayload(state).toHex(' '), payload.toHex(' '));
}

void TestBoxsimClimateState::writesEachButtonToItsBits_data()
{
    QTest::addColumn<int>("index");
    QTest::addColumn<int>("offset");
    QTest::addColumn<int>("all");
    QTest::addColumn<int>("low");

    struct Place {
        int offset;
        int all; ///< the byte with the button at 3
        int low; ///< the byte with the button at 1
    };
    const Place places[] = {{4, 0x0C, 0x04},  {4, 0x03, 0x01},  {5, 0xC0, 0x40},  {5, 0x30, 0x10},
                            {5, 0x0C, 0x04},  {5, 0x03, 0x01},  {9, 0x30, 0x10},  {9, 0x0C, 0x04},
                            {9, 0x03, 0x01},  {10, 0x0C, 0x04}, {10, 0x03, 0x01}, {11, 0xC0, 0x40},
                            {11, 0x30, 0x10}, {11, 0x0C, 0x04}, {11, 0x03, 0x01}, {12, 0xC0, 0x40},
                            {12, 0x30, 0x10}, {12, 0x0C, 0x04}, {13, 0x03, 0x01}, {13, 0x0C, 0x04}};
    int index = 0;
    for (const Place &place : places) {
        QTest::addRow("button %d", index) << index << place.offset << place.all << place.low;
        ++index;
    }
}

void TestBoxsimClimateState::writesEachButtonToItsBits()
{
    QFETCH(int, index);
    QFETCH(int, offset);
    QFETCH(int, all);
    QFETCH(int, low);

    ClimateState state;
    state.buttons[std::size_t(index)] = 3;
    QByteArray expected(15, '\0');
    expected[offset] = char(all);
    QCOMPARE(boxsim::climateDataPayload(state), expected);

    state.buttons[std::size_t(index)] = 1;
    expected[offset] = char(low);
    QCOMPARE(boxsim::climateDataPayload(state), expected);
}

void TestBoxsimClimateState::takesOverWhatChangedAndNothingElse()
{
    ClimateState state = everyItemDifferent();
    const ClimateState before;
    ClimateState after;
    after.manualTemp = 20;
    after.buttons[4] = 2;

    boxsim::applyChanges(state, before, after);

    QCOMPARE(boxsim::climateDataPayload(state), bytes("012c 9f01 66 ca 12 38 c8 f1 5b 1b 19 37 14"));
    QCOMPARE(state.title, QStringLiteral("T"));
    QCOMPARE(state.labels, QStringList {"L"});
}

void TestBoxsimClimateState::takesOverEveryItem()
{
    ClimateState state;

    boxsim::applyChanges(state, ClimateState(), everyItemDifferent());

    QCOMPARE(boxsim::climateDataPayload(state), bytes("012c 9f01 66 c6 12 38 c8 f1 5b 1b 19 37 9f"));
    QCOMPARE(boxsim::climateTypePayload(state), bytes("07 54 00"));
    QCOMPARE(boxsim::climateLabelsPayload(state), bytes("4c 00"));
}

QTEST_GUILESS_MAIN(TestBoxsimClimateState)
#include "tst_boxsim_climatestate.moc"
