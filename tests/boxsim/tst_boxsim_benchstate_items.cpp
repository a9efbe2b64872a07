#include "boxsim/fields/benchstate.h"

#include <QtCore/QSet>
#include <QtTest/QTest>

#include <functional>
#include <tuple>

using boxsim::Assignment;
using boxsim::BenchState;
using boxsim::Field;

using Change = std::function<void(BenchState &state)>;

Q_DECLARE_METATYPE(Change)

/// Each field sets an item of its own, and each item has a field.
class TestBoxsimBenchStateItems : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void setsEachItemAndNoOther_data();
    void setsEachItemAndNoOther();
    void setsEveryFieldInThisTest();
    void hasAFieldForEachMember();
};

namespace {

template <class... T>
constexpr int count(const T &...)
{
    return int(sizeof...(T));
}

// A struct with another number of members does not compile here: its new member needs a field and a row.

auto itemsOf(const boxsim::Measurements &m)
{
    const auto &[a, b, c, d, e, f, g, h, i, j] = m;
    return std::tie(a, b, c, d, e, f, g, h, i, j);
}

auto itemsOf(const boxsim::Faults &faults)
{
    const auto &[a, b, c, d, e, f, g, h, i, j, k, l, m, n, o, p, q] = faults;
    return std::tie(a, b, c, d, e, f, g, h, i, j, k, l, m, n, o, p, q);
}

int membersOf(const boxsim::ClimateState &s)
{
    const auto &[a, b, c, d, e, f, g, h, i, j, k, l, m, n, o, p, q, r, t] = s;
    return count(a, b, c, d, e, f, g, h, i, j, k, l, m, n, o, p, q, r, t);
}

int membersOf(const boxsim::GaugesState &s)
{
    const auto &[a, b, c, d, e, f, g, h, i, j, k, l, m, n, o] = s;
    return count(a, b, c, d, e, f, g, h, i, j, k, l, m, n, o);
}

int membersOf(const boxsim::VehicleState &s)
{
    const auto &[a, b, c, d, e, f, g, h, i, j, k] = s;
    return count(a, b, c, d, e, f, g, h, i, j, k);
}

int membersOf(const boxsim::ParkingState &s)
{
    const auto &[a, b, c, d, e, f, g, h, i] = s;
    return count(a, b, c, d, e, f, g, h, i);
}

int membersOf(const boxsim::TextScreen &s)
{
    const auto &[a, b, c, d] = s;
    return count(a, b, c, d);
}

int membersOf(const boxsim::Screens &s)
{
    const auto &[a] = s;
    return count(a);
}

int membersOf(const boxsim::CarState &s)
{
    const auto &[climate, gauges, vehicle, parking, textScreen, screens, transition] = s;
    return count(climate, gauges, vehicle, parking, textScreen, screens, transition);
}

int membersOf(const BenchState &s)
{
    const auto &[car, measured, faces, faults, ready] = s;
    return count(car, measured, faces, faults, ready);
}

bool isSame(const BenchState &a, const BenchState &b)
{
    return a.car == b.car && itemsOf(a.measured) == itemsOf(b.measured) && a.faces == b.faces
        && itemsOf(a.faults) == itemsOf(b.faults) && a.ready == b.ready;
}

int fieldsOf(const char *object)
{
    const auto belongs = [object](const Field &field) { return field.name.section('.', 0, 0) == object; };
    return int(std::count_if(boxsim::allFields().begin(), boxsim::allFields().end(), belongs));
}

Assignment assignment(const QString &name, const QString &text)
{
    Assignment made;
    QString error;
    if (!boxsim::assignText(name, text, &made, &error))
        qFatal("%s", qPrintable(error));
    return made;
}

struct Row {
    const char *name = nullptr;
    const char *text = nullptr;
    Change change;
};

QVector<Row> versionAndScreensRows()
{
    return {
        {"version.ready", "not-ready", [](BenchState &s) { s.ready = false; }},
        {"screens.supported", "no,yes,no,yes,yes",
         [](BenchState &s) {
             s.car.screens.supported = {false, true, false, true, true};
         }},
        {"screens.transition", "2", [](BenchState &s) { s.car.transition = 2; }},
    };
}

QVector<Row> climateRows()
{
    return {
        {"climate.type", "7", [](BenchState &s) { s.car.climate.type = 7; }},
        {"climate.title", "Air", [](BenchState &s) { s.car.climate.title = "Air"; }},
        {"climate.labels", "On,Off",
         [](BenchState &s) {
             s.car.climate.labels = QStringList {"On", "Off"};
         }},
        {"climate.mainTemp", "65535", [](BenchState &s) { s.car.climate.mainTemp = 0xffff; }},
        {"climate.secondTemp", "258", [](BenchState &s) { s.car.climate.secondTemp = 258; }},
        {"climate.mainUnit", "1", [](BenchState &s) { s.car.climate.mainUnit = 1; }},
        {"climate.secondUnit", "2", [](BenchState &s) { s.car.climate.secondUnit = 2; }},
        {"climate.leftHeatedSeat", "1", [](BenchState &s) { s.car.climate.leftHeatedSeat = 1; }},
        {"climate.rightHeatedSeat", "2", [](BenchState &s) { s.car.climate.rightHeatedSeat = 2; }},
        {"climate.leftCooledSeat", "3", [](BenchState &s) { s.car.climate.leftCooledSeat = 3; }},
        {"climate.rightCooledSeat", "8", [](BenchState &s) { s.car.climate.rightCooledSeat = 8; }},
        {"climate.fanDirectValue", "255", [](BenchState &s) { s.car.climate.fanDirectValue = 255; }},
        {"climate.fanSpeedStatus", "3", [](BenchState &s) { s.car.climate.fanSpeedStatus = 3; }},
        {"climate.ventPosition", "5", [](BenchState &s) { s.car.climate.ventPosition = 5; }},
        {"climate.fanDirect", "2", [](BenchState &s) { s.car.climate.fanDirect = 2; }},
        {"climate.systemOn", "on", [](BenchState &s) { s.car.climate.systemOn = true; }},
        {"climate.driverSeat", "on", [](BenchState &s) { s.car.climate.driverSeat = true; }},
        {"climate.manualTemp", "22", [](BenchState &s) { s.car.climate.manualTemp = 22; }},
        {"climate.button", "0,1,2,3,0,1,2,3,0,1,2,3,0,1,2,3,0,1,2,3",
         [](BenchState &s) {
             s.car.climate.buttons = {0, 1, 2, 3, 0, 1, 2, 3, 0, 1, 2, 3, 0, 1, 2, 3, 0, 1, 2, 3};
         }},
    };
}

QVector<Row> gaugesRows()
{
    return {
        {"gauges.type", "off,on,off,on",
         [](BenchState &s) {
             s.car.gauges.types = {false, true, false, true};
         }},
        {"gauges.title", "Dials", [](BenchState &s) { s.car.gauges.title = "Dials"; }},
        {"gauges.labels", "A,B",
         [](BenchState &s) {
             s.car.gauges.labels = QStringList {"A", "B"};
         }},
        {"gauges.scale", "0,50",
         [](BenchState &s) {
             s.car.gauges.scale = QStringList {"0", "50"};
         }},
        {"gauges.centerTexts", "C", [](BenchState &s) { s.car.gauges.centerTexts = QStringList {"C"}; }},
        {"gauges.topTexts", "T", [](BenchState &s) { s.car.gauges.topTexts = QStringList {"T"}; }},
        {"gauges.bottomTexts", "B", [](BenchState &s) { s.car.gauges.bottomTexts = QStringList {"B"}; }},
        {"gauges.zeroPosition", "1,2,3,4,5",
         [](BenchState &s) {
             s.car.gauges.zeroPositions = {1, 2, 3, 4, 5};
         }},
        {"gauges.value", "5,4,3,2,1",
         [](BenchState &s) {
             s.car.gauges.values = {5, 4, 3, 2, 1};
         }},
        {"gauges.format", "off,on,off,on,off",
         [](BenchState &s) {
             s.car.gauges.formats = {false, true, false, true, false};
         }},
        {"gauges.shift", "on", [](BenchState &s) { s.car.gauges.shift = true; }},
        {"gauges.labelState1", "1", [](BenchState &s) { s.car.gauges.labelState1 = 1; }},
        {"gauges.labelState2", "2", [](BenchState &s) { s.car.gauges.labelState2 = 2; }},
        {"gauges.peakColor", "6", [](BenchState &s) { s.car.gauges.peakColor = 6; }},
        {"gauges.valueTexts", "V", [](BenchState &s) { s.car.gauges.valueTexts = QStringList {"V"}; }},
    };
}

QVector<Row> vehicleRows()
{
    return {
        {"vehicle.title", "Car", [](BenchState &s) { s.car.vehicle.title = "Car"; }},
        {"vehicle.labels", "L", [](BenchState &s) { s.car.vehicle.labels = QStringList {"L"}; }},
        {"vehicle.door", "closed,open,closed,open",
         [](BenchState &s) {
             s.car.vehicle.doors = {false, true, false, true};
         }},
        {"vehicle.hood", "open", [](BenchState &s) { s.car.vehicle.hood = true; }},
        {"vehicle.trunk", "open", [](BenchState &s) { s.car.vehicle.trunk = true; }},
        {"vehicle.tire", "3,2,1,0",
         [](BenchState &s) {
             s.car.vehicle.tires = {3, 2, 1, 0};
         }},
        {"vehicle.checkEngine", "2", [](BenchState &s) { s.car.vehicle.checkEngine = 2; }},
        {"vehicle.battery", "on", [](BenchState &s) { s.car.vehicle.battery = true; }},
        {"vehicle.labelState1", "1", [](BenchState &s) { s.car.vehicle.labelState1 = 1; }},
        {"vehicle.labelState2", "2", [](BenchState &s) { s.car.vehicle.labelState2 = 2; }},
        {"vehicle.tireTexts", "2.4,2.5",
         [](BenchState &s) {
             s.car.vehicle.tireTexts = QStringList {"2.4", "2.5"};
         }},
    };
}

QVector<Row> parkingRows()
{
    return {
        {"parking.title", "Park", [](BenchState &s) { s.car.parking.title = "Park"; }},
        {"parking.labels", "L", [](BenchState &s) { s.car.parking.labels = QStringList {"L"}; }},
        {"parking.front", "1,2,3,4",
         [](BenchState &s) {
             s.car.parking.front = {1, 2, 3, 4};
         }},
        {"parking.rear", "2,3,4,5",
         [](BenchState &s) {
             s.car.parking.rear = {2, 3, 4, 5};
         }},
        {"parking.left", "3,4,5,6",
         [](BenchState &s) {
             s.car.parking.left = {3, 4, 5, 6};
         }},
        {"parking.right", "4,5,6,255",
         [](BenchState &s) {
             s.car.parking.right = {4, 5, 6, 255};
         }},
        {"parking.labelState1", "1", [](BenchState &s) { s.car.parking.labelState1 = 1; }},
        {"parking.labelState2", "2", [](BenchState &s) { s.car.parking.labelState2 = 2; }},
        {"parking.sensor", "on,off,on,off",
         [](BenchState &s) {
             s.car.parking.sensors = {true, false, true, false};
         }},
    };
}

QVector<Row> textScreenRows()
{
    return {
        {"textScreen.menu", "1,2,3,4",
         [](BenchState &s) {
             s.car.textScreen.menu = {1, 2, 3, 4};
         }},
        {"textScreen.minus", "on", [](BenchState &s) { s.car.textScreen.minus = true; }},
        {"textScreen.plus", "on", [](BenchState &s) { s.car.textScreen.plus = true; }},
        {"textScreen.texts", "A,B",
         [](BenchState &s) {
             s.car.textScreen.texts = QStringList {"A", "B"};
         }},
    };
}

QVector<Row> measuredRows()
{
    return {
        {"measured.speed", "1", [](BenchState &s) { s.measured.speed = 1; }},
        {"measured.engineSpeed", "2", [](BenchState &s) { s.measured.engineSpeed = 2; }},
        {"measured.coolant", "3", [](BenchState &s) { s.measured.coolant = 3; }},
        {"measured.boost", "-4", [](BenchState &s) { s.measured.boost = -4; }},
        {"measured.oil", "5", [](BenchState &s) { s.measured.oil = 5; }},
        {"measured.oilPressure", "6", [](BenchState &s) { s.measured.oilPressure = 6; }},
        {"measured.fuel", "7", [](BenchState &s) { s.measured.fuel = 7; }},
        {"measured.consumption", "8", [](BenchState &s) { s.measured.consumption = 8; }},
        {"measured.voltage", "9", [](BenchState &s) { s.measured.voltage = 9; }},
        {"measured.outside", "-10", [](BenchState &s) { s.measured.outside = -10; }},
        {"measured.face", "0,1,0,1,1",
         [](BenchState &s) {
             s.faces = {0, 1, 0, 1, 1};
         }},
    };
}

QVector<Row> faultRows()
{
    return {
        {"fault.dropFirstAnswers", "3", [](BenchState &s) { s.faults.dropFirstAnswers = 3; }},
        {"fault.dropAnswers", "0.1", [](BenchState &s) { s.faults.dropAnswers = 0.1; }},
        {"fault.nackAnswers", "0.2", [](BenchState &s) { s.faults.nackAnswers = 0.2; }},
        {"fault.wrongIds", "0.3", [](BenchState &s) { s.faults.wrongIds = 0.3; }},
        {"fault.wrongChecks", "0.4", [](BenchState &s) { s.faults.wrongChecks = 0.4; }},
        {"fault.flipBytes", "0.5", [](BenchState &s) { s.faults.flipBytes = 0.5; }},
        {"fault.loseBytes", "0.6", [](BenchState &s) { s.faults.loseBytes = 0.6; }},
        {"fault.doubleBytes", "0.7", [](BenchState &s) { s.faults.doubleBytes = 0.7; }},
        {"fault.insertBytes", "0.8", [](BenchState &s) { s.faults.insertBytes = 0.8; }},
        {"fault.noise", "12.5", [](BenchState &s) { s.faults.noise = 12.5; }},
        {"fault.split", "on", [](BenchState &s) { s.faults.split = true; }},
        {"fault.splitAt", "4", [](BenchState &s) { s.faults.splitAt = 4; }},
        {"fault.splitRound", "on", [](BenchState &s) { s.faults.splitRound = true; }},
        {"fault.mergeMs", "20", [](BenchState &s) { s.faults.mergeMs = 20; }},
        {"fault.pauseMs", "30", [](BenchState &s) { s.faults.pauseMs = 30; }},
        {"fault.silence", "on", [](BenchState &s) { s.faults.silence = true; }},
        {"fault.notReadyReplies", "2", [](BenchState &s) { s.faults.notReadyReplies = 2; }},
    };
}

QVector<Row> allRows()
{
    return versionAndScreensRows() + climateRows() + gaugesRows() + vehicleRows() + parkingRows()
        + textScreenRows() + measuredRows() + faultRows();
}

} // namespace

void TestBoxsimBenchStateItems::setsEachItemAndNoOther_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<Change>("change");
    const QVector<Row> rows = allRows();
    for (const Row &row : rows)
        QTest::newRow(row.name) << QString(row.text) << row.change;
}

void TestBoxsimBenchStateItems::setsEachItemAndNoOther()
{
    QFETCH(QString, text);
    QFETCH(Change, change);
    const Assignment made = assignment(QTest::currentDataTag(), text);
    BenchState expected;
    change(expected);
    QVERIFY(!isSame(expected, BenchState()));

    BenchState state;
    QVERIFY(boxsim::valueOf(state, made.field, made.entry) != made.value);
    boxsim::apply(state, made);
    QCOMPARE(boxsim::valueOf(state, made.field, made.entry), made.value);
    if (QString(QTest::currentDataTag()).startsWith("measured."))
        state.car.gauges = {}; // what they show then has tests of its own
    QVERIFY(isSame(state, expected));
}

void TestBoxsimBenchStateItems::setsEveryFieldInThisTest()
{
    QSet<QString> names;
    const QVector<Row> rows = allRows();
    for (const Row &row : rows)
        names.insert(row.name);
    QCOMPARE(names.size(), boxsim::allFields().size());
}

void TestBoxsimBenchStateItems::hasAFieldForEachMember()
{
    QCOMPARE(fieldsOf("climate"), membersOf(boxsim::ClimateState()));
    QCOMPARE(fieldsOf("gauges"), membersOf(boxsim::GaugesState()));
    QCOMPARE(fieldsOf("vehicle"), membersOf(boxsim::VehicleState()));
    QCOMPARE(fieldsOf("parking"), membersOf(boxsim::ParkingState()));
    QCOMPARE(fieldsOf("textScreen"), membersOf(boxsim::TextScreen()));
    const int transition = 1;
    QCOMPARE(fieldsOf("screens"), membersOf(boxsim::Screens()) + transition);
    const int objectsOfTheCar = 6;
    QCOMPARE(membersOf(boxsim::CarState()), objectsOfTheCar + transition);
    const int faces = 1;
    const boxsim::Measurements measured;
    QCOMPARE(fieldsOf("measured"), int(std::tuple_size_v<decltype(itemsOf(measured))>) + faces);
    QCOMPARE(fieldsOf("fault"), int(std::tuple_size_v<decltype(itemsOf(boxsim::Faults()))>));
    const int ready = 1;
    QCOMPARE(fieldsOf("version"), ready);
    QCOMPARE(membersOf(BenchState()), 4 + ready);
}

QTEST_GUILESS_MAIN(TestBoxsimBenchStateItems)
#include "tst_boxsim_benchstate_items.moc"
