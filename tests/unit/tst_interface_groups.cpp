#include "declaredmethods.h"
#include "player/canbusplayer.h"
#include "velgaugesgroupcmd.h"
#include "velparkinggroupcmd.h"
#include "velvehiclegroupcmd.h"

#include <QtCore/QMetaMethod>
#include <QtTest/QSignalSpy>
#include <QtTest/QTest>

using namespace canbus;

/// What the UI and scripts rely on in the gauges, vehicle and parking groups and in the facade's operations,
/// letter for letter.
class TestInterfaceGroups : public QObject {
    Q_OBJECT

private Q_SLOTS:
    // First, before anything else can have made the list known.
    void flagListsOfTheGaugesReadAsSequences();

    void namesTheGroups();
    void gaugesSignals();
    void gaugesSlots();
    void vehicleSignals();
    void vehicleSlots();
    void parkingSignals();
    void parkingSlots();
    void leavesTheDecodersOutOfReach();
    void playerOperations();
    void callsAnOperationByName();
};

void TestInterfaceGroups::flagListsOfTheGaugesReadAsSequences()
{
    VelGaugesGroupCmd::instance();
    const int type = QMetaType::type("QList<bool>");
    QVERIFY(type != QMetaType::UnknownType);
    QVERIFY(QMetaType::hasRegisteredConverterFunction(
        type, QMetaType::type("QtMetaTypePrivate::QSequentialIterableImpl")));
}

void TestInterfaceGroups::namesTheGroups()
{
    QCOMPARE(VelGaugesGroupCmd::staticMetaObject.className(), "canbus::VelGaugesGroupCmd");
    QCOMPARE(VelVehicleGroupCmd::staticMetaObject.className(), "canbus::VelVehicleGroupCmd");
    QCOMPARE(VelParkingGroupCmd::staticMetaObject.className(), "canbus::VelParkingGroupCmd");
    QCOMPARE(VelGaugesGroupCmd::staticMetaObject.superClass(), &QObject::staticMetaObject);
    QCOMPARE(VelVehicleGroupCmd::staticMetaObject.superClass(), &QObject::staticMetaObject);
    QCOMPARE(VelParkingGroupCmd::staticMetaObject.superClass(), &QObject::staticMetaObject);
}

void TestInterfaceGroups::gaugesSignals()
{
    QCOMPARE(declaredMethods(VelGaugesGroupCmd::staticMetaObject, QMetaMethod::Signal),
             (QStringList {
                 "void updateGaugeType(QMap<int,bool> m_list)",
                 "void updateGaugeTopText(QString TopText)",
                 "void updateGaugeComText(QStringList Text)",
                 "void updateGaugeScale(QStringList scale)",
                 "void updateGaugeCenterText(QStringList CenterText)",
                 "void updateGaugeTopLRText(QStringList TopLRText)",
                 "void updateGaugeBottomLRText(QStringList BottomLRText)",
                 "void updateGaugePeakColorState(int color)",
                 "void updateGaugeComLabelsState(int state1, int state2)",
                 "void updateGaugeZeroPos(QList<int>)",
                 "void updateGaugeValue(QList<int>)",
                 "void updateGaugeValueText(QStringList)",
                 "void updateGaugeShift(bool Shift)",
                 "void updateGaugeFormat(QList<bool>)",
             }));
}

void TestInterfaceGroups::gaugesSlots()
{
    QCOMPARE(declaredMethods(VelGaugesGroupCmd::staticMetaObject, QMetaMethod::Slot),
             (QStringList {
                 "void getGaugesInfo()",
                 "void onTimerOut()",
                 "void requestGaugesInfo()",
                 "void settings()",
                 "void Gauge1_CenterGauge(bool isPress)",
                 "void Gauge2_TopLeft(bool isPress)",
                 "void Gauge3_TopRight(bool isPress)",
                 "void Gauge4_BottomLeft(bool isPress)",
                 "void Gauge5_BottomRight(bool isPress)",
                 "void customControl1()",
                 "void customControl2()",
             }));
}

void TestInterfaceGroups::vehicleSignals()
{
    QCOMPARE(declaredMethods(VelVehicleGroupCmd::staticMetaObject, QMetaMethod::Signal),
             (QStringList {
                 "void updateVehicleTopText(QString TopText)",
                 "void updateVehicleComText(QStringList Text)",
                 "void updateVehicleDoorStatus(QList<bool> m_list)",
                 "void updateVehicleHoodk(bool hood)",
                 "void updateVehicleTrunk(bool trunk)",
                 "void updateVehicleBattery(bool battery)",
                 "void updateVehicleTire(QList<int>)",
                 "void updateVehicleCheckEngineState(int state)",
                 "void updateVehicleComLabelsState(int state1, int state2)",
                 "void updateVehicleTireText(QStringList)",
             }));
}

void TestInterfaceGroups::vehicleSlots()
{
    QCOMPARE(declaredMethods(VelVehicleGroupCmd::staticMetaObject, QMetaMethod::Slot),
             (QStringList {
                 "void requestVehicleInfo()",
                 "void getVehicleInfo()",
                 "void settings()",
                 "void checkEngine()",
                 "void customControl1()",
                 "void customControl2()",
                 "void onTimerOut()",
             }));
}

void TestInterfaceGroups::parkingSignals()
{
    QCOMPARE(declaredMethods(VelParkingGroupCmd::staticMetaObject, QMetaMethod::Signal),
             (QStringList {
                 "void updateParkTopText(QString TopText)",
                 "void updateParkComText(QStringList Text)",
                 "void updateParkSensorFront(QList<int> m_list)",
                 "void updateParkSensorRear(QList<int> m_list)",
                 "void updateParkSensorLeft(QList<int> m_list)",
                 "void updateParkSensorRight(QList<int> m_list)",
                 "void updateParkComLabelsState(int state1, int state2)",
                 "void updateParkSensorStatus(QList<bool> m_list)",
             }));
}

void TestInterfaceGroups::parkingSlots()
{
    QCOMPARE(declaredMethods(VelParkingGroupCmd::staticMetaObject, QMetaMethod::Slot),
             (QStringList {
                 "void requestParkInfo()",
                 "void getParkInfo()",
                 "void settings()",
                 "void customControl1()",
                 "void customControl2()",
             }));
}

void TestInterfaceGroups::leavesTheDecodersOutOfReach()
{
    for (const QMetaObject *type :
         {&VelGaugesGroupCmd::staticMetaObject, &VelVehicleGroupCmd::staticMetaObject,
          &VelParkingGroupCmd::staticMetaObject})
        QCOMPARE(declaredMethods(*type, QMetaMethod::Method), QStringList());
}

void TestInterfaceGroups::playerOperations()
{
    QCOMPARE(declaredMethods(CanBusPlayer::staticMetaObject, QMetaMethod::Method),
             (QStringList {
                 "void setUartPort(QString port, int baud)",
                 "bool getCanbusConnectStatus()",
                 "QMap<int,bool> getSuppScrennInfo()",
                 "void getTextScreenInfo()",
                 "void onMenuPress(int menu, int item, int action)",
                 "void requestNormal()",
                 "bool getCanbusCameraEnable()",
                 "void syncGPSTimeToCanbus(int minute, int hour, int day, int month, int year, int format)",
             }));
}

void TestInterfaceGroups::callsAnOperationByName()
{
    CanBusPlayer player;
    QSignalSpy sent(&player, &CanBusPlayer::sendCmdData);
    QVERIFY(QMetaObject::invokeMethod(&player, "onMenuPress", Q_ARG(int, 1), Q_ARG(int, 2), Q_ARG(int, 4)));
    QCOMPARE(sent.count(), 1);
    QCOMPARE(sent.at(0).at(0).toByteArray(), QByteArray::fromHex("9f02 00 91 00 01 02 04 96 9f03"));

    player.setCanbusConnectStatus(true);
    bool connected = false;
    QVERIFY(QMetaObject::invokeMethod(&player, "getCanbusConnectStatus", Q_RETURN_ARG(bool, connected)));
    QVERIFY(connected);
}

QTEST_GUILESS_MAIN(TestInterfaceGroups)
#include "tst_interface_groups.moc"
