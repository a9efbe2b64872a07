#include "itemtable.h"

#include "velclimategroupcmd.h"
#include "velgaugesgroupcmd.h"
#include "velparkinggroupcmd.h"
#include "velvehiclegroupcmd.h"

#include <QtCore/QMetaMethod>
#include <QtCore/QSet>
#include <QtTest/QTest>

using namespace canbus;

/// The table of items, with which decoders are compared, knows what the groups announce: a signal that is
/// missing there would be compared with nothing.
class TestItemTable : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void hasEachSignalOfAGroup_data();
    void hasEachSignalOfAGroup();
};

namespace {

QSet<QString> signalsOf(const QMetaObject &group)
{
    QSet<QString> names;
    for (int index = group.methodOffset(); index < group.methodCount(); ++index) {
        if (group.method(index).methodType() == QMetaMethod::Signal)
            names.insert(QString::fromLatin1(group.method(index).name()));
    }
    return names;
}

QSet<QString> signalsIn(const std::vector<itemtable::Row> &rows)
{
    QSet<QString> names;
    for (const itemtable::Row &row : rows)
        names.insert(QString::fromLatin1(row.signal));
    return names;
}

} // namespace

void TestItemTable::hasEachSignalOfAGroup_data()
{
    QTest::addColumn<QSet<QString>>("announced");
    QTest::addColumn<QSet<QString>>("known");

    QTest::newRow("climate") << signalsOf(VelClimateGroupCmd::staticMetaObject)
                             << signalsIn(itemtable::climateRows());
    QTest::newRow("gauges") << signalsOf(VelGaugesGroupCmd::staticMetaObject)
                            << signalsIn(itemtable::gaugesRows());
    QTest::newRow("vehicle") << signalsOf(VelVehicleGroupCmd::staticMetaObject)
                             << signalsIn(itemtable::vehicleRows());
    QTest::newRow("parking") << signalsOf(VelParkingGroupCmd::staticMetaObject)
                             << signalsIn(itemtable::parkingRows());
}

void TestItemTable::hasEachSignalOfAGroup()
{
    QFETCH(QSet<QString>, announced);
    QFETCH(QSet<QString>, known);

    QVERIFY(!announced.isEmpty());
    QCOMPARE((announced - known).values(), QStringList());
    QCOMPARE((known - announced).values(), QStringList());
}

QTEST_GUILESS_MAIN(TestItemTable)
#include "tst_itemtable.moc"
