#include "framesmodel.h"

#include <hexbytes.h>

#include <QtCore/QAbstractItemModel>
#include <QtTest/QAbstractItemModelTester>
#include <QtTest/QSignalSpy>
#include <QtTest/QTest>

using canbus::qml::FramesModel;

/// The last frames as a delegate reads them.
class TestFramesModel : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void isEmptyAtFirst();
    void hasTheNewestFirst();
    void hasTheRolesByName();
    void losesTheOldestBeyond32();
    void isEmptyWhenCleared();
    void hasNothingOutsideItsRows();
    void keepsTheRulesOfModels();

private:
    static QString textOf(const FramesModel &model, int row, int role)
    {
        return model.data(model.index(row), role).toString();
    }
};

void TestFramesModel::isEmptyAtFirst()
{
    const FramesModel model;
    QCOMPARE(model.rowCount(), 0);
}

void TestFramesModel::hasTheNewestFirst()
{
    FramesModel model;
    model.add(FramesModel::Direction::Received, QTime(1, 2, 3, 4), bytes("9f 06 21 21 9f 03"));
    model.add(FramesModel::Direction::Sent, QTime(23, 59, 59, 999), bytes("9f 15 0a 0a 9f 03"));
    QCOMPARE(model.rowCount(), 2);
    QCOMPARE(textOf(model, 0, FramesModel::TimeRole), QStringLiteral("23:59:59.999"));
    QCOMPARE(textOf(model, 0, FramesModel::DirectionRole), QStringLiteral("sent"));
    QCOMPARE(textOf(model, 0, FramesModel::HexRole), QStringLiteral("9f 15 0a 0a 9f 03"));
    QCOMPARE(textOf(model, 1, FramesModel::TimeRole), QStringLiteral("01:02:03.004"));
    QCOMPARE(textOf(model, 1, FramesModel::DirectionRole), QStringLiteral("received"));
    QCOMPARE(textOf(model, 1, FramesModel::HexRole), QStringLiteral("9f 06 21 21 9f 03"));
}

void TestFramesModel::hasTheRolesByName()
{
    const QHash<int, QByteArray> names = FramesModel().roleNames();
    QCOMPARE(names.size(), 3);
    QCOMPARE(names.value(FramesModel::TimeRole), QByteArray("time"));
    QCOMPARE(names.value(FramesModel::DirectionRole), QByteArray("direction"));
    QCOMPARE(names.value(FramesModel::HexRole), QByteArray("hex"));
}

void TestFramesModel::losesTheOldestBeyond32()
{
    FramesModel model;
    for (int number = 0; number < 33; ++number)
        model.add(FramesModel::Direction::Sent, QTime(0, 0), QByteArray(1, char(number)));
    QCOMPARE(model.rowCount(), 32);
    QCOMPARE(textOf(model, 0, FramesModel::HexRole), QStringLiteral("20"));
    QCOMPARE(textOf(model, 31, FramesModel::HexRole), QStringLiteral("01"));
}

void TestFramesModel::isEmptyWhenCleared()
{
    FramesModel model;
    model.add(FramesModel::Direction::Sent, QTime(0, 0), bytes("31"));
    model.clear();
    QCOMPARE(model.rowCount(), 0);
}

void TestFramesModel::hasNothingOutsideItsRows()
{
    FramesModel model;
    model.add(FramesModel::Direction::Sent, QTime(0, 0), bytes("31"));
    QCOMPARE(model.data({}, FramesModel::HexRole), QVariant());
    QCOMPARE(model.data(model.index(0), Qt::DisplayRole), QVariant());
    QCOMPARE(model.rowCount(model.index(0)), 0);
}

void TestFramesModel::keepsTheRulesOfModels()
{
    FramesModel model;
    const QAbstractItemModelTester tester(&model, QAbstractItemModelTester::FailureReportingMode::QtTest);
    QSignalSpy inserted(&model, &QAbstractItemModel::rowsInserted);
    QSignalSpy removed(&model, &QAbstractItemModel::rowsRemoved);
    for (int number = 0; number < 34; ++number)
        model.add(FramesModel::Direction::Received, QTime(0, 0), bytes("31"));
    model.clear();
    QCOMPARE(inserted.count(), 34);
    QCOMPARE(removed.count(), 2);
}

QTEST_GUILESS_MAIN(TestFramesModel)
#include "tst_framesmodel.moc"
