#include "anotherthread.h"
#include "callers.h"
#include "canbusplayer.h"
#include "handdrivenprotocol.h"
#include "hexbytes.h"
#include "velclimategroupcmd.h"
#include "velgaugesgroupcmd.h"
#include "velparkinggroupcmd.h"
#include "velvehiclegroupcmd.h"

#include <QtCore/QCoreApplication>
#include <QtCore/QLoggingCategory>
#include <QtCore/QMetaMethod>
#include <QtTest/QTest>

#include <functional>
#include <memory>
#include <vector>

using namespace canbus;

namespace {

const char *const kNoDevice = "/dev/canbus-missing";

using Call = std::function<void(HandDrivenProtocol &)>;

struct Operation {
    QString name;
    Call call;
};

/// Everything that somebody may call, by its class and name.
std::vector<Operation> g_operations;

/// The objects with signals that the host may connect to.
QList<QObject *> speakers(HandDrivenProtocol &protocol)
{
    return {protocol.get(),
            protocol->linkHealth(),
            HandDrivenProtocol::buffer(),
            CanBusPlayer::instance(),
            VelClimateGroupCmd::instance(),
            VelGaugesGroupCmd::instance(),
            VelParkingGroupCmd::instance(),
            VelVehicleGroupCmd::instance()};
}

Callers connectCallers(HandDrivenProtocol &protocol, const Call &call)
{
    return connectCallers(speakers(protocol), [&protocol, call] { call(protocol); });
}

/// Makes the protocol, the player and the groups emit each of their signals.
void makeEverythingSpeak(HandDrivenProtocol &protocol)
{
    static const char *const received[] = {
        "9f 02 35 01 00 00 01 35 9f 03",          // ready
        "9f 06 35 35 9f 03",                      // the check is acknowledged
        "9f 02 21 02 00 1f 3c 9f 03",             // screens
        "9f 02 21 03 00 01 41 00 62 9f 03",       // climate
        "9f 02 21 04 00 01 41 00 65 9f 03",       // gauges
        "9f 02 21 05 00 41 00 65 9f 03",          // vehicle
        "9f 02 21 06 00 41 00 66 9f 03",          // parking
        "9f 02 21 07 00 00 26 9f 03",             // transition
        "9f 02 21 11 00 01 02 03 04 00 34 9f 03", // text screen
    };
    for (const char *frame : received)
        protocol.passOver(bytes(frame));
    protocol->onSaveSendCmdData(bytes("9f 02 31 93 00 a2 9f 03"));
    for (int expiry = 0; expiry < 4; ++expiry)
        protocol->onSendTmrout();
    Q_EMIT HandDrivenProtocol::buffer()->received(bytes("01"));
    static int texts = 0;
    CanBusPlayer *const player = CanBusPlayer::instance();
    player->suppScreen(bytes("1f"));
    player->onTextScreen(bytes("01 02 03 04 00") + QByteArray::number(++texts) + '\0');
    player->setCanbusConnectStatus(true);
    player->setCanbusConnectStatus(false);
    player->requestNormal();
    VelClimateGroupCmd::instance()->getClimateInfo();
    VelGaugesGroupCmd::instance()->getGaugesInfo();
    VelParkingGroupCmd::instance()->getParkInfo();
    VelVehicleGroupCmd::instance()->getVehicleInfo();
}

/// Calls a slot or invokable operation with arguments of no special value.
void invoke(QObject *object, const QMetaMethod &method)
{
    QGenericArgument arguments[10];
    std::vector<QVariant> values;
    values.reserve(10);
    for (int i = 0; i < method.parameterCount(); ++i) {
        values.emplace_back(method.parameterType(i), nullptr);
        arguments[i] = QGenericArgument(QMetaType::typeName(method.parameterType(i)), values.back().data());
    }
    const bool isInvoked =
        method.invoke(object, Qt::DirectConnection, arguments[0], arguments[1], arguments[2], arguments[3],
                      arguments[4], arguments[5], arguments[6]);
    if (!isInvoked)
        qFatal("%s cannot be called", method.methodSignature().constData());
}

void addMethodsOf(QObject *object)
{
    const QMetaObject *type = object->metaObject();
    for (int index = type->methodOffset(); index < type->methodCount(); ++index) {
        const QMetaMethod method = type->method(index);
        if (method.methodType() == QMetaMethod::Signal || method.access() != QMetaMethod::Public)
            continue;
        g_operations.push_back(
            {QString::fromLatin1(type->className() + QByteArray("::") + method.methodSignature()),
             [object, method](HandDrivenProtocol &) { invoke(object, method); }});
    }
}

void addProtocolOperations()
{
    FrameDataFormat *const frame = new FrameDataFormat;
    frame->setParent(QCoreApplication::instance());
    const std::pair<const char *, std::function<void(VelCanBusProtocol &)>> operations[] = {
        {"analyseData", [](auto &it) { it.analyseData("1"); }},
        {"TestSerialPort", [](auto &it) { it.TestSerialPort(); }},
        {"linkHealth", [](auto &it) { it.linkHealth()->figures(); }},
        {"onSearchDLE", [](auto &it) { it.onSearchDLE(); }},
        {"onSearchDLE_ETX", [](auto &it) { it.onSearchDLE_ETX(0); }},
        {"onRemoveEscapeFrameHeaders", [](auto &it) { it.onRemoveEscapeFrameHeaders(0, 9); }},
        {"checkXOR", [](auto &it) { it.checkXOR(0, 9); }},
        {"onProcessingFrameData", [](auto &it) { it.onProcessingFrameData(0, 9); }},
        {"onCategoryDataProcessing", [](auto &it) { it.onCategoryDataProcessing(); }},
        {"onReceiveSaveData", [](auto &it) { it.onReceiveSaveData(); }},
        {"onAllocateData", [](auto &it) { it.onAllocateData(); }},
        {"receiveModuleAck", [](auto &it) { it.receiveModuleAck(); }},
        {"receiveModuleNAck", [](auto &it) { it.receiveModuleNAck(); }},
        {"onReceiveSaveACKData", [](auto &it) { it.onReceiveSaveACKData(); }},
        {"onReceiveSaveNACKData", [](auto &it) { it.onReceiveSaveNACKData(); }},
        {"restartSendTmr", [](auto &it) { it.restartSendTmr(); }},
        {"removeSendCmdData", [](auto &it) { it.removeSendCmdData(0x35); }},
        {"parse_GetVersion", [frame](auto &it) { it.parse_GetVersion(frame); }},
        {"parse_ScreensInfo", [frame](auto &it) { it.parse_ScreensInfo(frame); }},
        {"parse_ClimateInfo", [frame](auto &it) { it.parse_ClimateInfo(frame); }},
        {"parse_GaugesInfo", [frame](auto &it) { it.parse_GaugesInfo(frame); }},
        {"parse_VehicleInfo", [frame](auto &it) { it.parse_VehicleInfo(frame); }},
        {"parse_ParingAssistInfo", [frame](auto &it) { it.parse_ParingAssistInfo(frame); }},
        {"parse_ScreensTransition", [frame](auto &it) { it.parse_ScreensTransition(frame); }},
        {"parse_TextScreen", [frame](auto &it) { it.parse_TextScreen(frame); }},
        {"onParseDataTmrout", [](auto &it) { it.onParseDataTmrout(); }},
        {"onCheckConnectTmrout", [](auto &it) { it.onCheckConnectTmrout(); }},
        {"onRequestConnect", [](auto &it) { it.onRequestConnect(); }},
        {"onSendTmrout", [](auto &it) { it.onSendTmrout(); }},
        {"onSaveSendCmdData", [](auto &it) { it.onSaveSendCmdData(bytes("9f 02 32 94 00 a6 9f 03")); }},
    };
    for (const auto &[name, call] : operations) {
        g_operations.push_back({QStringLiteral("VelCanBusProtocol::") + name,
                                [call = call](HandDrivenProtocol &protocol) { call(*protocol.get()); }});
    }
}

void addPlainOperations()
{
    g_operations.push_back({"CanBusPlayer::init", [](HandDrivenProtocol &protocol) {
                                CanBusPlayer::instance()->init(protocol.get());
                            }});
    g_operations.push_back({"the climate decoders", [](HandDrivenProtocol &) {
                                VelClimateGroupCmd::instance()->onClimateType(bytes("02 41 00"));
                                VelClimateGroupCmd::instance()->onClimateData(QByteArray(15, '\x5a'));
                            }});
    g_operations.push_back({"the gauges decoders", [](HandDrivenProtocol &) {
                                VelGaugesGroupCmd::instance()->handleGaugeType(bytes("02 41 00"));
                                VelGaugesGroupCmd::instance()->handleGaugeStateValue(QByteArray(20, '\x5a'));
                            }});
    g_operations.push_back({"the parking decoders", [](HandDrivenProtocol &) {
                                VelParkingGroupCmd::instance()->onParkTopText(bytes("41 00"));
                                VelParkingGroupCmd::instance()->onParkData(QByteArray(17, '\x5a'));
                            }});
    g_operations.push_back({"the vehicle decoders", [](HandDrivenProtocol &) {
                                VelVehicleGroupCmd::instance()->onVehicleTopText(bytes("41 00"));
                                VelVehicleGroupCmd::instance()->onVehicleData(QByteArray(9, '\x5a'));
                            }});
}

const Call &operation(const QString &name)
{
    static const Call none = [](HandDrivenProtocol &) {};
    for (const Operation &operation : g_operations) {
        if (operation.name == name)
            return operation.call;
    }
    return none;
}

} // namespace

/// A slot that is connected directly may call everything back, on the thread that it is called on.
class CallbacksTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void init();

    void makesEverySignalHeard();
    void neverDeadlock_data();
    void neverDeadlock();
};

void CallbacksTest::initTestCase()
{
    // What Qt says of timers that are touched by other threads than their own: the groups' belong to the
    // main thread, and the test calls them all the same.
    QLoggingCategory::defaultCategory()->setEnabled(QtWarningMsg, false);
    addProtocolOperations();
    addPlainOperations();
    addMethodsOf(CanBusPlayer::instance());
    addMethodsOf(VelClimateGroupCmd::instance());
    addMethodsOf(VelGaugesGroupCmd::instance());
    addMethodsOf(VelParkingGroupCmd::instance());
    addMethodsOf(VelVehicleGroupCmd::instance());
    init();
    // The port gets its thread.
    const LogRecorder quiet;
    CanBusPlayer::instance()->init(nullptr);
}

void CallbacksTest::init()
{
    CanBusPlayer::instance()->setUartPort(kNoDevice, 57600);
}

void CallbacksTest::makesEverySignalHeard()
{
    HandDrivenProtocol protocol;
    const auto callers = connectCallers(protocol, operation({}));
    makeEverythingSpeak(protocol);
    for (const auto &caller : callers)
        QVERIFY2(caller->calls() > 0, qPrintable(caller->signal()));
    QVERIFY2(callers.size() > 60, qPrintable(QString::number(callers.size())));
}

void CallbacksTest::neverDeadlock_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<bool>("isElsewhere");

    for (const Operation &operation : g_operations) {
        for (const bool isElsewhere : {false, true}) {
            const QString row =
                operation.name + (isElsewhere ? " on another thread" : " on the protocol's thread");
            QTest::newRow(qPrintable(row)) << operation.name << isElsewhere;
        }
    }
}

void CallbacksTest::neverDeadlock()
{
    QFETCH(QString, name);
    QFETCH(bool, isElsewhere);

    HandDrivenProtocol protocol;
    Callers callers = connectCallers(protocol, operation(name));
    if (isElsewhere)
        QVERIFY(onAnotherThread([&] { makeEverythingSpeak(protocol); }));
    else
        makeEverythingSpeak(protocol);
    int calls = 0;
    for (const auto &caller : callers)
        calls += caller->calls();
    QVERIFY2(calls >= int(callers.size() / 2), qPrintable(QString::number(calls)));
    callers.clear();
    // The link goes on.
    HandDrivenProtocol::buffer()->data.clear();
    QCOMPARE(protocol.passOver(bytes("9f 02 21 08 00 29 9f 03")).last(), QString("write 9f0621219f03"));
}

QTEST_GUILESS_MAIN(CallbacksTest)
#include "tst_callbacks.moc"
