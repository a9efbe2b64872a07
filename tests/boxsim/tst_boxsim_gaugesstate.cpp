#include "boxsim/car/gaugesstate.h"

#include "hexbytes.h"

#include <QtTest/QTest>

using boxsim::GaugesState;

namespace {

void row(const char *name, const GaugesState &state, const char *payload)
{
    QTest::newRow(name) << state << bytes(payload);
}

template <class T>
GaugesState with(T GaugesState::*item, T value)
{
    GaugesState state;
    state.*item = value;
    return state;
}

GaugesState withTypes(const std::array<bool, 4> &types, const QString &title)
{
    GaugesState state;
    state.types = types;
    state.title = title;
    return state;
}

GaugesState withScale(const QStringList &scale, const QStringList &centerTexts)
{
    GaugesState state;
    state.scale = scale;
    state.centerTexts = centerTexts;
    return state;
}

GaugesState everyItemDifferent()
{
    GaugesState state = withTypes({true, false, true, false}, QStringLiteral("T"));
    state.labels = QStringList {"L"};
    state.scale = QStringList {"0", "20"};
    state.centerTexts = QStringList {"C"};
    state.topTexts = QStringList {"U"};
    state.bottomTexts = QStringList {"D"};
    state.zeroPositions = {1, 2, 3, 4, 5};
    state.values = {0x11, 0x12, 0x9F, 0x14, 0xFF};
    state.formats = {true, false, false, true, false};
    state.shift = true;
    state.labelState1 = 2;
    state.labelState2 = 1;
    state.peakColor = 6;
    state.valueTexts = QStringList {"V", "W"};
    return state;
}

} // namespace

Q_DECLARE_METATYPE(boxsim::GaugesState)

class TestBoxsimGaugesState : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void writesTypesAndTitle_data();
    void writesTypesAndTitle();
    void writesEachListOfTexts();
    void writesScaleAndCenterTexts_data();
    void writesScaleAndCenterTexts();
    void writesEachItemToItsBits_data();
    void writesEachItemToItsBits();
    void takesOverWhatChangedAndNothingElse();
    void takesOverEveryItem();
    void tellsStatesApart();
};

void TestBoxsimGaugesState::writesTypesAndTitle_data()
{
    QTest::addColumn<GaugesState>("state");
    QTest::addColumn<QByteArray>("payload");

    row("nothing", GaugesState(), "00 00");
    row("type 0", withTypes({true, false, false, false}, QString()), "01 00");
    row("type 1", withTypes({false, true, false, false}, QString()), "02 00");
    row("type 2", withTypes({false, false, true, false}, QString()), "04 00");
    row("type 3", withTypes({false, false, false, true}, QString()), "08 00");
    row("a title in UTF-8", withTypes({true, false, true, false}, QStringLiteral("Aü")), "05 41 c3bc 00");
}

void TestBoxsimGaugesState::writesTypesAndTitle()
{
    QFETCH(GaugesState, state);
    QFETCH(QByteArray, payload);
    QCOMPARE(boxsim::gaugesTypePayload(state).toHex(' '), payload.toHex(' '));
}

void TestBoxsimGaugesState::writesEachListOfTexts()
{
    const QStringList texts {"A", "", QStringLiteral("Я")};
    const QByteArray payload = bytes("41 00 00 d0af 00");

    QCOMPARE(boxsim::gaugesLabelsPayload(with(&GaugesState::labels, texts)), payload);
    QCOMPARE(boxsim::gaugesTopTextsPayload(with(&GaugesState::topTexts, texts)), payload);
    QCOMPARE(boxsim::gaugesBottomTextsPayload(with(&GaugesState::bottomTexts, texts)), payload);
    QCOMPARE(boxsim::gaugesLabelsPayload(GaugesState()), QByteArray());
}

void TestBoxsimGaugesState::writesScaleAndCenterTexts_data()
{
    QTest::addColumn<GaugesState>("state");
    QTest::addColumn<QByteArray>("payload");

    const QStringList full {"0", "20", "40", "60", "80", "100", "120", "140", "160", "180", "200"};
    row("no scale: the first entry is empty", GaugesState(), "0000");
    row("one entry of two characters", withScale({"10"}, {}), "3130");
    row("one entry of one character", withScale({"0"}, {}), "3000");
    row("a first entry that is too long", withScale({"123"}, {}), "3132");
    row("three entries", withScale({"0", "5", "100"}, {}), "3000 350000 313030");
    row("a later entry that is too long", withScale({"0", "1000"}, {}), "3000 313030");
    row("a character that does not fit is left out whole", withScale({"0", QStringLiteral("aüü")}, {}),
        "3000 61c3bc");
    row("a character too long for the first entry", withScale({QStringLiteral("空")}, {}), "0000");
    row("a full scale", withScale(full, {}),
        "3000 323000 343000 363000 383000 313030 313230 313430 313630 313830 323030");
    row("a twelfth entry is not sent", withScale(full + QStringList {"220"}, {}),
        "3000 323000 343000 363000 383000 313030 313230 313430 313630 313830 323030");
    row("centre texts behind a full scale", withScale(full, {"km/h", "", "x"}),
        "3000 323000 343000 363000 383000 313030 313230 313430 313630 313830 323030 6b6d2f68 00 00 78 00");
    row("centre texts behind a short scale", withScale({"0", "1"}, {"A"}),
        "3000 310000 000000 000000 000000 000000 000000 000000 000000 000000 000000 4100");
    row("centre texts without a scale", withScale({}, {"A"}),
        "0000 000000 000000 000000 000000 000000 000000 000000 000000 000000 000000 4100");
}

void TestBoxsimGaugesState::writesScaleAndCenterTexts()
{
    QFETCH(GaugesState, state);
    QFETCH(QByteArray, payload);
    QCOMPARE(boxsim::gaugesScalePayload(state).toHex(' '), payload.toHex(' '));
}

void TestBoxsimGaugesState::writesEachItemToItsBits_data()
{
    QTest::addColumn<GaugesState>("state");
    QTest::addColumn<QByteArray>("payload");

    using State = GaugesState;
    using Bytes = std::array<quint8, 5>;
    using Flags = std::array<bool, 5>;
    row("nothing: one empty value text", State(), "00 00 00 00 00 00 00 00 00 00 00 00 00");
    row("zero positions", with<Bytes>(&State::zeroPositions, {1, 2, 3, 4, 0x9F}),
        "01 00 00 00 02 00 03 00 04 00 9f 00 00");
    row("values", with<Bytes>(&State::values, {1, 2, 3, 4, 0xFF}), "00 01 00 00 00 02 00 03 00 04 00 ff 00");
    row("shift", with(&State::shift, true), "00 00 01 00 00 00 00 00 00 00 00 00 00");
    row("format of the centre gauge", with<Flags>(&State::formats, {true}),
        "00 00 02 00 00 00 00 00 00 00 00 00 00");
    row("format of the top left gauge", with<Flags>(&State::formats, {false, true}),
        "00 00 04 00 00 00 00 00 00 00 00 00 00");
    row("format of the top right gauge", with<Flags>(&State::formats, {false, false, true}),
        "00 00 08 00 00 00 00 00 00 00 00 00 00");
    row("format of the bottom left gauge", with<Flags>(&State::formats, {false, false, false, true}),
        "00 00 10 00 00 00 00 00 00 00 00 00 00");
    row("format of the bottom right gauge", with<Flags>(&State::formats, {false, false, false, false, true}),
        "00 00 20 00 00 00 00 00 00 00 00 00 00");
    row("label state 1", with<quint8>(&State::labelState1, 3), "00 00 c0 00 00 00 00 00 00 00 00 00 00");
    row("low bit of label state 1", with<quint8>(&State::labelState1, 1),
        "00 00 40 00 00 00 00 00 00 00 00 00 00");
    row("label state 2", with<quint8>(&State::labelState2, 3), "00 00 00 03 00 00 00 00 00 00 00 00 00");
    row("peak colour", with<quint8>(&State::peakColor, 6), "00 00 00 18 00 00 00 00 00 00 00 00 00");
    row("low bit of the peak colour", with<quint8>(&State::peakColor, 1),
        "00 00 00 04 00 00 00 00 00 00 00 00 00");
    row("a peak colour with more bits than it has room for", with<quint8>(&State::peakColor, 9),
        "00 00 00 04 00 00 00 00 00 00 00 00 00");
    row("value texts", with(&State::valueTexts, QStringList {"90", "", QStringLiteral("°")}),
        "00 00 00 00 00 00 00 00 00 00 00 00 3930 00 00 c2b0 00");
    row("every item different", everyItemDifferent(), "01 11 93 19 02 12 03 9f 04 14 05 ff 56 00 57 00");
}

void TestBoxsimGaugesState::writesEachItemToItsBits()
{
    QFETCH(GaugesState, state);
    QFETCH(QByteArray, payload);
    QCOMPARE(boxsim::gaugesDataPayload(state).toHex(' '), payload.toHex(' '));
}

void TestBoxsimGaugesState::takesOverWhatChangedAndNothingElse()
{
    GaugesState state = everyItemDifferent();
    const GaugesState before;
    GaugesState after;
    after.values[2] = 0x55;
    after.labelState2 = 3;

    boxsim::applyChanges(state, before, after);

    GaugesState expected = everyItemDifferent();
    expected.values = {0x11, 0x12, 0x55, 0x14, 0xFF};
    expected.labelState2 = 3;
    QVERIFY(state == expected);
}

void TestBoxsimGaugesState::takesOverEveryItem()
{
    GaugesState state;

    boxsim::applyChanges(state, GaugesState(), everyItemDifferent());

    QVERIFY(state == everyItemDifferent());
    QCOMPARE(boxsim::gaugesTypePayload(state), bytes("05 54 00"));
    QCOMPARE(boxsim::gaugesBottomTextsPayload(state), bytes("44 00"));
    QCOMPARE(boxsim::gaugesDataPayload(state), bytes("01 11 93 19 02 12 03 9f 04 14 05 ff 56 00 57 00"));
}

void TestBoxsimGaugesState::tellsStatesApart()
{
    QVERIFY(GaugesState() == GaugesState());
    QVERIFY(!(with(&GaugesState::shift, true) == GaugesState()));
    QVERIFY(!(with(&GaugesState::centerTexts, QStringList {"A"}) == GaugesState()));
}

QTEST_GUILESS_MAIN(TestBoxsimGaugesState)
#include "tst_boxsim_gaugesstate.moc"
