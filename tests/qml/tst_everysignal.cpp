#include "climatestate.h"
#include "gaugesstate.h"
#include "parkingstate.h"
#include "vehiclestate.h"

#include <QtCore/QMetaMethod>
#include <QtCore/QMetaProperty>
#include <QtTest/QTest>

#include <velclimategroupcmd.h>
#include <velgaugesgroupcmd.h>
#include <velparkinggroupcmd.h>
#include <velvehiclegroupcmd.h>

#include <memory>

using namespace canbus;
using namespace canbus::qml;

namespace {

/// A value of a signal's parameter that no state object has at first.
QVariant newValueOf(const QByteArray &type)
{
    static const QMap<QByteArray, QVariant> values {
        {"int", 7},
        {"bool", true},
        {"QString", QStringLiteral("new")},
        {"QStringList", QStringList {QStringLiteral("new")}},
        {"QList<int>", QVariant::fromValue(QList<int> {7})},
        {"QList<bool>", QVariant::fromValue(QList<bool> {true})},
        {"QMap<int,bool>", QVariant::fromValue(QMap<int, bool> {{0, true}})},
    };
    return values.value(type);
}

QGenericArgument argumentOf(const QVariant &value)
{
    return value.isValid() ? QGenericArgument(value.typeName(), value.constData()) : QGenericArgument();
}

/// Counts the changes of the properties that are a class's own.
class ChangeCount : public QObject {
    Q_OBJECT

public:
    explicit ChangeCount(const QObject *object)
    {
        const QMetaMethod counting = metaObject()->method(metaObject()->indexOfSlot("count()"));
        const QMetaObject *const type = object->metaObject();
        for (int index = type->propertyOffset(); index < type->propertyCount(); ++index)
            connect(object, type->property(index).notifySignal(), this, counting);
    }

    int changes = 0;

public Q_SLOTS:
    void count() { ++changes; }
};

} // namespace

Q_DECLARE_METATYPE(std::shared_ptr<State>)

/// Each parameter of each signal of a group has a property of its own, in the state object beside the group.
class TestEverySignal : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void isHeardByAPropertyForEachParameter_data();
    void isHeardByAPropertyForEachParameter();

private:
    static void addSignalsOf(QObject *group, const std::shared_ptr<State> &state);
};

void TestEverySignal::addSignalsOf(QObject *group, const std::shared_ptr<State> &state)
{
    const QMetaObject *const type = group->metaObject();
    for (int index = type->methodOffset(); index < type->methodCount(); ++index) {
        const QMetaMethod method = type->method(index);
        if (method.methodType() == QMetaMethod::Signal)
            QTest::newRow(method.name().constData()) << group << state << index;
    }
}

void TestEverySignal::isHeardByAPropertyForEachParameter_data()
{
    QTest::addColumn<QObject *>("group");
    QTest::addColumn<std::shared_ptr<State>>("state");
    QTest::addColumn<int>("index");
    addSignalsOf(VelClimateGroupCmd::instance(), std::make_shared<ClimateState>());
    addSignalsOf(VelGaugesGroupCmd::instance(), std::make_shared<GaugesState>());
    addSignalsOf(VelVehicleGroupCmd::instance(), std::make_shared<VehicleState>());
    addSignalsOf(VelParkingGroupCmd::instance(), std::make_shared<ParkingState>());
}

void TestEverySignal::isHeardByAPropertyForEachParameter()
{
    QFETCH(QObject *const, group);
    QFETCH(const std::shared_ptr<State>, state);
    QFETCH(const int, index);
    const QMetaMethod signal = group->metaObject()->method(index);
    const QList<QByteArray> types = signal.parameterTypes();
    QVERIFY(!types.isEmpty() && types.size() <= 2);
    const QVariant first = newValueOf(types.constFirst());
    const QVariant second = types.size() > 1 ? newValueOf(types.constLast()) : QVariant();
    QVERIFY2(first.isValid(), types.constFirst().constData());

    const ChangeCount count(state.get());
    QVERIFY(signal.invoke(group, Qt::DirectConnection, argumentOf(first), argumentOf(second)));
    QCOMPARE(count.changes, types.size());
    QVERIFY(signal.invoke(group, Qt::DirectConnection, argumentOf(first), argumentOf(second)));
    QCOMPARE(count.changes, types.size());
    QVERIFY(state->isValid());
}

QTEST_GUILESS_MAIN(TestEverySignal)
#include "tst_everysignal.moc"
