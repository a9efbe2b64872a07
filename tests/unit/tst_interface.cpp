#include "canbusprotocol.h"
#include "declaredmethods.h"
#include "player/canbusdatamap.h"
#include "player/canbusplayer.h"
#include "serial/serialport.h"
#include "velcanbusprotocol.h"
#include "velclimategroupcmd.h"

#include <QtCore/QMetaMethod>
#include <QtTest/QTest>

#include <type_traits>

using namespace canbus;

namespace {

QStringList signalsOf(const QMetaObject &type)
{
    return declaredMethods(type, QMetaMethod::Signal);
}

QStringList slotsOf(const QMetaObject &type)
{
    return declaredMethods(type, QMetaMethod::Slot);
}

QMetaMethod::Access accessOf(const QMetaObject &type, const char *signature)
{
    return type.method(type.indexOfMethod(signature)).access();
}

} // namespace

/// What the user interface, scripts and old connections by name rely on, letter for letter.
class TestInterface : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void namesItsClasses();
    void receiveBuffer();
    void theRestHasNeitherSignalsNorSlots();
    void serialPort();
    void serialPortKeepsReadingToItself();
    void canbusProtocol();
    void velCanBusProtocol();
    void linkHealth();
    void canBusDataMap();
    void canBusPlayer();
    void canBusPlayerOperationsByName_data();
    void canBusPlayerOperationsByName();
    void climateSignals();
    void climateSlots();
};

void TestInterface::namesItsClasses()
{
    QCOMPARE(SerialPort::staticMetaObject.className(), "canbus::SerialPort");
    QCOMPARE(CanbusProtocol::staticMetaObject.className(), "canbus::CanbusProtocol");
    QCOMPARE(VelCanBusProtocol::staticMetaObject.className(), "canbus::VelCanBusProtocol");
    QCOMPARE(CanBusDataMap::staticMetaObject.className(), "canbus::CanBusDataMap");
    QCOMPARE(CanBusPlayer::staticMetaObject.className(), "canbus::CanBusPlayer");
    QCOMPARE(VelClimateGroupCmd::staticMetaObject.className(), "canbus::VelClimateGroupCmd");
    for (const QMetaObject *type :
         {&SerialPort::staticMetaObject, &CanbusProtocol::staticMetaObject, &CanBusDataMap::staticMetaObject,
          &CanBusPlayer::staticMetaObject, &VelClimateGroupCmd::staticMetaObject})
        QCOMPARE(type->superClass(), &QObject::staticMetaObject);
    QCOMPARE(VelCanBusProtocol::staticMetaObject.superClass(), &CanbusProtocol::staticMetaObject);
}

void TestInterface::receiveBuffer()
{
    QCOMPARE(CanBusReadBuff::staticMetaObject.className(), "canbus::CanBusReadBuff");
    QCOMPARE(signalsOf(CanBusReadBuff::staticMetaObject), QStringList {"void received(QByteArray block)"});
    QCOMPARE(slotsOf(CanBusReadBuff::staticMetaObject), QStringList());
}

void TestInterface::theRestHasNeitherSignalsNorSlots()
{
    QCOMPARE(FrameDataFormat::staticMetaObject.className(), "canbus::FrameDataFormat");
    QCOMPARE(CanbusTickThread::staticMetaObject.className(), "canbus::CanbusTickThread");
    for (const QMetaObject *type :
         {&FrameDataFormat::staticMetaObject, &CanbusTickThread::staticMetaObject}) {
        QCOMPARE(type->methodCount(), type->methodOffset());
        QCOMPARE(type->propertyCount(), type->propertyOffset());
    }
}

void TestInterface::serialPort()
{
    QCOMPARE(signalsOf(SerialPort::staticMetaObject),
             (QStringList {
                 "void connected(QString portName)",
                 "void error(QString portName, int errorType, QString errorString)",
                 "void disconnected()",
                 "void read(QByteArray data)",
                 "void status(QString status)",
             }));
    QCOMPARE(slotsOf(SerialPort::staticMetaObject),
             (QStringList {
                 "bool open(QString portName, int baudRate)",
                 "void disconnect()",
                 "void handleError()",
                 "void writeData(QByteArray data)",
                 "void writeData(QString data)",
                 "void writeData(const char* data, int len)",
                 "private void onReadyRead()",
             }));
}

void TestInterface::serialPortKeepsReadingToItself()
{
    const QMetaObject &type = SerialPort::staticMetaObject;
    QCOMPARE(accessOf(type, "onReadyRead()"), QMetaMethod::Private);
    QCOMPARE(accessOf(type, "open(QString,int)"), QMetaMethod::Public);
    QCOMPARE(accessOf(type, "writeData(QByteArray)"), QMetaMethod::Public);
    QCOMPARE(type.indexOfMethod("isOpen()"), -1);
}

void TestInterface::canbusProtocol()
{
    QVERIFY(std::is_abstract_v<CanbusProtocol>);
    QCOMPARE(signalsOf(CanbusProtocol::staticMetaObject),
             (QStringList {
                 "void onWritPortData(QByteArray data)",
                 "void notifyCanbusStatus(bool status)",
                 "void notifyScreensInfo(QByteArray data)",
                 "void notifyClimateInfo(QByteArray TPMOD, QByteArray data)",
                 "void notifyGaugesInfo(QByteArray TPMOD, QByteArray data)",
                 "void notifyVehicleInfo(QByteArray TPMOD, QByteArray data)",
                 "void notifyParingAssistInfo(QByteArray TPMOD, QByteArray data)",
                 "void notifyScreensTransition(QByteArray data)",
                 "void notifyTextScreen(QByteArray data)",
             }));
    QCOMPARE(slotsOf(CanbusProtocol::staticMetaObject), QStringList());
}

void TestInterface::velCanBusProtocol()
{
    QCOMPARE(slotsOf(VelCanBusProtocol::staticMetaObject),
             (QStringList {
                 "void onParseDataTmrout()",
                 "void onCheckConnectTmrout()",
                 "void onRequestConnect()",
                 "void onSendTmrout()",
                 "void onSaveSendCmdData(QByteArray data)",
             }));
    QCOMPARE(signalsOf(VelCanBusProtocol::staticMetaObject), QStringList());
}

void TestInterface::linkHealth()
{
    QCOMPARE(LinkHealth::staticMetaObject.className(), "canbus::LinkHealth");
    QCOMPARE(signalsOf(LinkHealth::staticMetaObject),
             QStringList {"void commandEnded(QByteArray frame, canbus::LinkHealth::Fate fate, "
                          "int transmissions, qlonglong microseconds)"});
    QCOMPARE(slotsOf(LinkHealth::staticMetaObject), QStringList());
    const QMetaObject &protocol = VelCanBusProtocol::staticMetaObject;
    const int index = protocol.indexOfMethod("linkHealth()");
    QVERIFY(index >= 0);
    QCOMPARE(declaredMethod(protocol.method(index)), QStringLiteral("canbus::LinkHealth* linkHealth()"));
}

void TestInterface::canBusDataMap()
{
    QCOMPARE(slotsOf(CanBusDataMap::staticMetaObject), QStringList());
    QCOMPARE(signalsOf(CanBusDataMap::staticMetaObject), QStringList());
}

void TestInterface::canBusPlayer()
{
    QCOMPARE(signalsOf(CanBusPlayer::staticMetaObject),
             (QStringList {
                 "void sendCmdData(QByteArray data)",
                 "void updateScreenInfo(QMap<int,bool> m_list)",
                 "void canbusConnectStatus(bool status)",
                 "void updateMenuInfo(QList<int> Menu, bool Minus, bool Plus, QStringList Text)",
             }));
    QCOMPARE(slotsOf(CanBusPlayer::staticMetaObject),
             (QStringList {
                 "void readPortData(QByteArray data)",
                 "void writPortData(QByteArray data)",
                 "void setCanbusConnectStatus(bool status)",
                 "void onCanbusSourceDsplChange()",
                 "void onSyncTimeTmrout()",
                 "void suppScreen(QByteArray data)",
                 "void onClimateInfo(QByteArray TPMOD, QByteArray data)",
                 "void onGaugesInfo(QByteArray TPMOD, QByteArray data)",
                 "void onVehicleInfo(QByteArray TPMOD, QByteArray data)",
                 "void onParingAssistInfo(QByteArray TPMOD, QByteArray data)",
                 "void onChangeDsp(QByteArray data)",
                 "void onTextScreen(QByteArray data)",
                 "void onReverseChanged(bool, int)",
             }));
}

void TestInterface::canBusPlayerOperationsByName_data()
{
    QTest::addColumn<QString>("declaration");
    QTest::newRow("setUartPort(QString,int)") << QStringLiteral("void setUartPort(QString port, int baud)");
    QTest::newRow("getCanbusConnectStatus()") << QStringLiteral("bool getCanbusConnectStatus()");
    QTest::newRow("getSuppScrennInfo()") << QStringLiteral("QMap<int,bool> getSuppScrennInfo()");
    QTest::newRow("getTextScreenInfo()") << QStringLiteral("void getTextScreenInfo()");
    QTest::newRow("onMenuPress(int,int,int)")
        << QStringLiteral("void onMenuPress(int menu, int item, int action)");
    QTest::newRow("requestNormal()") << QStringLiteral("void requestNormal()");
    QTest::newRow("getCanbusCameraEnable()") << QStringLiteral("bool getCanbusCameraEnable()");
    QTest::newRow("syncGPSTimeToCanbus(int,int,int,int,int,int)") << QStringLiteral(
        "void syncGPSTimeToCanbus(int minute, int hour, int day, int month, int year, int format)");
}

void TestInterface::canBusPlayerOperationsByName()
{
    QFETCH(QString, declaration);
    const QMetaObject &type = CanBusPlayer::staticMetaObject;
    const int index = type.indexOfMethod(QTest::currentDataTag());
    QVERIFY(index >= 0);
    QCOMPARE(declaredMethod(type.method(index)), declaration);
    QCOMPARE(type.method(index).methodType(), QMetaMethod::Method);
    QCOMPARE(type.method(index).access(), QMetaMethod::Public);
}

void TestInterface::climateSignals()
{
    QCOMPARE(signalsOf(VelClimateGroupCmd::staticMetaObject),
             (QStringList {
                 "void updateClimateType(int Type)",
                 "void updateClimateTopText(QString TopText)",
                 "void updateClimateComText(QStringList Text)",
                 "void updateClimateBtnStatus(QList<int> m_list)",
                 "void updateClimateMainTemp(int value, int Unit)",
                 "void updateClimateSecondTemp(int value, int Unit)",
                 "void updateClimateHeatSeat(int left, int right)",
                 "void updateClimateCoolSeat(int left, int right)",
                 "void updateClimateFanDirectValue(int value)",
                 "void updateClimateFanSpeedStatus(int value)",
                 "void updateClimateVentPosition(int value)",
                 "void updateClimateFanDirect(int MaualFd)",
                 "void updateClimateManualTempValue(int value)",
                 "void updateClimateSystem(bool state)",
                 "void updateClimateDriverSeatPos(bool pos)",
             }));
}

void TestInterface::climateSlots()
{
    QCOMPARE(slotsOf(VelClimateGroupCmd::staticMetaObject),
             (QStringList {
                 "void getClimateInfo()",
                 "void requestClimateInfo()",
                 "void settings()",
                 "void onSendDataSort(char Type, bool isPress, char value)",
                 "void onSendDataSort(char Type, bool isPress)",
                 "void onSendDataSort(char Type)",
                 "void onOff()",
                 "void rearZone(bool isPress)",
                 "void autoMainZoneTempPlus(bool isPress)",
                 "void autoMainZoneTempMinus(bool isPress)",
                 "void autoSecondZoneTempPlus(bool isPress)",
                 "void autoSecondZoneTempMinus(bool isPress)",
                 "void manualMainZoneTempUp(bool isPress)",
                 "void manualMainZoneTempDown(bool isPress)",
                 "void leftHeatedSeat()",
                 "void rightHeatedSeat()",
                 "void leftCooledSeat()",
                 "void rightCooledSeat()",
                 "void autoFanDirectValue(char value)",
                 "void autoBtn()",
                 "void ventPos()",
                 "void recircFresh()",
                 "void dualBtn()",
                 "void acBtn()",
                 "void maxACBtn()",
                 "void frontDefroster()",
                 "void rearDefroster()",
                 "void customControl1()",
                 "void customControl2()",
                 "void heatedSteerWheel()",
                 "void fanSpeedUp(bool isPress)",
                 "void fanSpeedDown(bool isPress)",
                 "void manualTemp(char value)",
                 "void manualFanSpeed(char value)",
             }));
}

QTEST_GUILESS_MAIN(TestInterface)
#include "tst_interface.moc"
