#include "drivenround.h"
#include "hexbytes.h"

#include <QtCore/QSet>
#include <QtTest/QTest>

#include <functional>

using boxsim::ClimateState;

namespace {

const ClimateState &climateAt(qint64 nowMs)
{
    return drivenround::driveAt(nowMs).climate;
}

using Item = std::function<QString(const ClimateState &)>;

/// Every value that the item takes in one round.
QSet<QString> valuesInARound(const Item &item)
{
    QSet<QString> values;
    for (qint64 now = 0; now < 60000; now += 1000)
        values.insert(item(climateAt(now)));
    return values;
}

template <class T>
void row(const char *name, T ClimateState::*item)
{
    QTest::newRow(name) << Item([item](const ClimateState &state) { return QString::number(state.*item); });
}

QByteArray payloads(const ClimateState &state)
{
    return boxsim::climateTypePayload(state) + boxsim::climateLabelsPayload(state)
        + boxsim::climateDataPayload(state);
}

} // namespace

Q_DECLARE_METATYPE(Item)

class TestBoxsimDrive : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void changesEachItemInARound_data();
    void changesEachItemInARound();
    void showsEachButtonInAllFourStates();
    void keepsTheValuesThatTheHeadUnitDefines();
    void beginsTheSameRoundAgain();
    void changesOnlyAtWholeSeconds();
    void changesSomethingAtLeastEveryThreeSeconds();
    void showsTheEscapeByte();
    void beginsWithAKnownState();
};

void TestBoxsimDrive::changesEachItemInARound_data()
{
    QTest::addColumn<Item>("item");

    row("type", &ClimateState::type);
    QTest::newRow("title") << Item([](const ClimateState &state) { return state.title; });
    QTest::newRow("labels") << Item([](const ClimateState &state) { return state.labels.join('/'); });
    row("main temperature", &ClimateState::mainTemp);
    row("second temperature", &ClimateState::secondTemp);
    row("main unit", &ClimateState::mainUnit);
    row("second unit", &ClimateState::secondUnit);
    row("left heated seat", &ClimateState::leftHeatedSeat);
    row("right heated seat", &ClimateState::rightHeatedSeat);
    row("left cooled seat", &ClimateState::leftCooledSeat);
    row("right cooled seat", &ClimateState::rightCooledSeat);
    row("fan direct value", &ClimateState::fanDirectValue);
    row("fan speed", &ClimateState::fanSpeedStatus);
    row("vent position", &ClimateState::ventPosition);
    row("fan direct", &ClimateState::fanDirect);
    row("system", &ClimateState::systemOn);
    row("driver seat", &ClimateState::driverSeat);
    row("manual temperature", &ClimateState::manualTemp);
}

void TestBoxsimDrive::changesEachItemInARound()
{
    QFETCH(Item, item);

    QVERIFY(valuesInARound(item).size() >= 2);
}

void TestBoxsimDrive::showsEachButtonInAllFourStates()
{
    for (std::size_t i = 0; i < 20; ++i) {
        const QSet<QString> states =
            valuesInARound([i](const ClimateState &state) { return QString::number(state.buttons[i]); });
        QCOMPARE(states, QSet<QString>({"0", "1", "2", "3"}));
    }
}

void TestBoxsimDrive::keepsTheValuesThatTheHeadUnitDefines()
{
    for (qint64 now = 0; now < 60000; now += 1000) {
        const ClimateState state = climateAt(now);
        QVERIFY(state.mainTemp >= 160 && state.mainTemp <= 300);
        QVERIFY(state.secondTemp >= 160 && state.secondTemp <= 300);
        QVERIFY(state.mainUnit <= 3 && state.secondUnit <= 3);
        QVERIFY(state.leftHeatedSeat <= 8 && state.rightHeatedSeat <= 8);
        QVERIFY(state.leftCooledSeat <= 8 && state.rightCooledSeat <= 8);
        QVERIFY(state.fanSpeedStatus <= 3 && state.ventPosition <= 8 && state.fanDirect <= 3);
        QVERIFY(!state.title.isEmpty() && !state.labels.isEmpty());
    }
}

void TestBoxsimDrive::beginsTheSameRoundAgain()
{
    for (qint64 now = 0; now < 60000; now += 1000)
        QCOMPARE(payloads(climateAt(now + 180000)), payloads(climateAt(now)));
}

void TestBoxsimDrive::changesOnlyAtWholeSeconds()
{
    for (qint64 now = 0; now < 60000; now += 250)
        QCOMPARE(payloads(climateAt(now)), payloads(climateAt(now / 1000 * 1000)));
}

void TestBoxsimDrive::changesSomethingAtLeastEveryThreeSeconds()
{
    for (qint64 now = 0; now < 60000; now += 1000)
        QVERIFY(payloads(climateAt(now)) != payloads(climateAt(now + 3000)));
}

void TestBoxsimDrive::showsTheEscapeByte()
{
    const auto hasEscape = [](const ClimateState &state) {
        return QString(boxsim::climateDataPayload(state).contains('\x9f') ? "yes" : "no");
    };

    QCOMPARE(valuesInARound(hasEscape), QSet<QString>({"yes", "no"}));
}

void TestBoxsimDrive::beginsWithAKnownState()
{
    const ClimateState state = climateAt(0);

    QCOMPARE(boxsim::climateTypePayload(state), bytes("00 436c696d617465 00"));
    QCOMPARE(boxsim::climateLabelsPayload(state), bytes("52656172 00 496f6e73 00"));
    QCOMPARE(boxsim::climateDataPayload(state).toHex(' '),
             QByteArray("00 a0 01 2c 00 01 00 88 0f 15 06 aa fc 1f 0f"));
}

QTEST_GUILESS_MAIN(TestBoxsimDrive)
#include "tst_boxsim_drive.moc"
