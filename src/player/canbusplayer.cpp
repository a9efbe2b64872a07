#include "canbusplayer.h"

#include "canbusdatamap.h"
#include "canbuslog.h"
#include "canbusplayer_p.h"
#include "canbusprotocol.h"
#include "groups/velclimategroupcmd.h"
#include "groups/velgaugesgroupcmd.h"
#include "groups/velparkinggroupcmd.h"
#include "groups/velvehiclegroupcmd.h"
#include "link/commandframe.h"
#include "link/frameformat.h"
#include "link/wireconstants.h"
#include "pindriver.h"
#include "serialport.h"
#include "support/bytes.h"
#include "support/processwide.h"
#include "support/text.h"
#include "support/threadsatexit.h"
#include "velcanbusprotocol.h"

#include <QtCore/QCoreApplication>
#include <QtCore/QMetaEnum>
#include <QtCore/QPointer>
#include <QtCore/QThread>

#include <datetimemanager.h>
#include <displaystate.h>
#include <eventhandler.h>
#include <mcuservice.h>
#include <settingsutil.h>
#include <srcdsplctrl.h>
#include <touchevent.h>

#include <iterator>

namespace canbus {

namespace {

constexpr int kFirstSyncMs = 1000;
constexpr int kMinuteMs = 60000;

// Displays, events and touches of the host, by the numbers that it knows them by. What they mean is its own
// business.
constexpr int kViewWithoutCamera = 25;
constexpr int kGaugesScreen = 73;
constexpr int kVehicleScreen = 74;
constexpr int kClimateScreen = 75;
constexpr int kParkingScreen = 76;
constexpr int kBoxCameraView = 78;

constexpr int kLeaveBoxScreenEvent = 4;
constexpr int kEnterCameraEvent = 35;
constexpr int kLeaveCameraEvent = 36;

/// The touch by which the box leaves a vehicle screen, and those by which it moves on one, in the order of
/// the request codes 1 to 4: not an ascending one.
constexpr int kLeaveTouch = 15;
constexpr int kMoveTouches[] = {83, 81, 82, 84};

constexpr int kScreenCount = 5;
constexpr int kReverseCameraScreen = 1; // the box's screen that brings the camera
constexpr int kTextScreenTexts = 5;     // where the texts begin
constexpr int kUnknownTime = 255;

int msToNextMinute(const QTime &time)
{
    return kMinuteMs - (time.second() * 1000 + time.msec());
}

template <class Group>
using Decoder = void (Group::*)(QByteArray);

/// Hands `data` to the decoder of its sub-type: the index into `decoders`.
template <class Group, int Count>
void route(const logging::Origin &origin, const QByteArray &TPMOD, const QByteArray &data,
           const Decoder<Group> (&decoders)[Count])
{
    CANBUS_DEBUG_AT(origin) << TPMOD.size() << data.size();
    const quint8 subType = firstByte(TPMOD);
    if (subType >= Count) {
        CANBUS_ERROR_AT(origin) << "data is error";
        return;
    }
    (Group::instance()->*decoders[subType])(data);
}

} // namespace

CanBusPlayer *CanBusPlayer::instance()
{
    static const ProcessWide<CanBusPlayer> player;
    return player.get();
}

CanBusPlayer::CanBusPlayer(QObject *parent)
    : QObject(parent)
    , d(new CanBusPlayerPrivate(this))
{
    qRegisterMetaType<QList<int>>("QList<int>");
    qRegisterMetaType<QList<bool>>("QList<bool>");
    qRegisterMetaType<QMap<int, bool>>("QMap<int,bool>");
}

CanBusPlayer::~CanBusPlayer()
{
    delete d;
}

void CanBusPlayer::init(CanbusProtocol *protocol)
{
    if (thread && QThread::currentThread() != QObject::thread()) {
        initOnOwnThread(protocol);
        return;
    }
    pinDriver::setUp();
    if (!d->serialPort)
        d->serialPort = new SerialPort;
    if (thread)
        startWorkerThread();
    d->countPortErrors(protocol);
    if (d->openPort())
        join(CANBUS_HERE, protocol);
    if (!thread) {
        thread = new QThread;
        d->serialPort->moveToThread(thread);
        startWorkerThread();
    }
}

/// Opening waits for the port's thread, which may be waiting for the end of the pass that the caller is in:
/// so it is the player's thread that waits, which nobody waits for.
void CanBusPlayer::initOnOwnThread(CanbusProtocol *protocol)
{
    const bool isGiven = protocol;
    const auto later = [this, isGiven, protocol = QPointer<CanbusProtocol>(protocol)] {
        if (protocol || !isGiven)
            init(protocol);
    };
    QMetaObject::invokeMethod(this, later, Qt::QueuedConnection);
}

/// Joins the open port, the protocol and the host.
void CanBusPlayer::join(const logging::Origin &origin, CanbusProtocol *protocol)
{
    CANBUS_DEBUG_AT(origin) << "can uart is open";
    if (!protocol) {
        CANBUS_ERROR_AT(origin) << "no protocol: create a VelCanBusProtocol and pass it";
        return;
    }
    d->protocol = protocol;
    d->connectAll();
    CANBUS_DEBUG_AT(origin) << "port, protocol and host are joined";
}

/// Starts the thread if it is not running: it ends with the application object, and a process may make
/// another one.
void CanBusPlayer::startWorkerThread()
{
    if (thread->isRunning())
        return;
    // The port's thread appends to the buffer: it must be there before the thread is registered for the exit.
    CanBusReadBuff::instance();
    QThread *const worker = thread;
    worker->start(QThread::InheritPriority);
    // The thread ends when it has carried out what is posted to it, which on a line that takes nothing is a
    // tenth of a second for each block.
    threadsAtExit::add(worker, [worker, port = d->serialPort] {
        port->stopWriting();
        worker->quit();
    });
}

CanbusProtocol *CanBusPlayer::protocol() const
{
    return d->protocol;
}

void CanBusPlayer::setUartPort(const QString &port, int baud)
{
    d->portName = port;
    d->baudRate = baud;
}

bool CanBusPlayer::getCanbusConnectStatus()
{
    return d->connectStatus;
}

void CanBusPlayer::onSplitEOFstrings(QStringList &list, QByteArray data)
{
    splitZeroTerminated(list, data);
}

void CanBusPlayer::removeGarbledCodeFromUtf8(QString &text)
{
    removeReplacementCharacters(text);
}

int CanBusPlayer::on2bitComparisonStates(char value, int bit0, int bit1)
{
    return state2At(quint8(value), bit0, bit1);
}

int CanBusPlayer::on3bitComparisonStates(char value, int bit0, int bit1, int bit2)
{
    return state3At(quint8(value), bit0, bit1, bit2);
}

int CanBusPlayer::on4bitComparisonStates(char value, int bit0, int bit1, int bit2, int bit3)
{
    return state4At(quint8(value), bit0, bit1, bit2, bit3);
}

void CanBusPlayer::onEscapeFrameHeader(char byte, QByteArray &frame)
{
    frame::appendEscaped(frame, quint8(byte));
}

void CanBusPlayer::readPortData(QByteArray data)
{
    // Bytes may be under way from the port's thread while the host deletes its protocol.
    if (d->protocol)
        d->protocol->analyseData(data);
}

void CanBusPlayer::writPortData(QByteArray data)
{
    if (d->serialPort)
        d->serialPort->writeData(data);
}

void CanBusPlayer::setCanbusConnectStatus(bool status)
{
    if (status == d->connectStatus)
        return;
    d->connectStatus = status;
    if (status) {
        if (!d->syncTimer.isActive())
            d->syncTimer.start(kFirstSyncMs);
    } else {
        d->syncTimer.stop();
        if (EventHandler::instance()->srcDsplCtrl()->currentDspl() == kBoxCameraView) {
            EventHandler::instance()->onEvent(kLeaveBoxScreenEvent);
            EventHandler::instance()->onEvent(kLeaveCameraEvent);
        }
    }
    Q_EMIT canbusConnectStatus(status);
}

void CanBusPlayer::onClimateInfo(QByteArray TPMOD, QByteArray data)
{
    static constexpr Decoder<VelClimateGroupCmd> decoders[] = {
        &VelClimateGroupCmd::onClimateType,
        &VelClimateGroupCmd::onClimateCustomLabel,
        &VelClimateGroupCmd::onClimateData,
    };
    route(CANBUS_HERE, TPMOD, data, decoders);
}

void CanBusPlayer::onGaugesInfo(QByteArray TPMOD, QByteArray data)
{
    static constexpr Decoder<VelGaugesGroupCmd> decoders[] = {
        &VelGaugesGroupCmd::handleGaugeType,
        &VelGaugesGroupCmd::handleGaugeCustomLabel,
        &VelGaugesGroupCmd::handleGaugeScaleAndCenterText,
        &VelGaugesGroupCmd::handleGaugeTopLeft_RightText,
        &VelGaugesGroupCmd::handleGaugeBottomLeft_RightText,
        &VelGaugesGroupCmd::handleGaugeStateValue,
    };
    route(CANBUS_HERE, TPMOD, data, decoders);
}

void CanBusPlayer::onVehicleInfo(QByteArray TPMOD, QByteArray data)
{
    static constexpr Decoder<VelVehicleGroupCmd> decoders[] = {
        &VelVehicleGroupCmd::onVehicleTopText,
        &VelVehicleGroupCmd::onVehicleCustomLabel,
        &VelVehicleGroupCmd::onVehicleData,
    };
    route(CANBUS_HERE, TPMOD, data, decoders);
}

void CanBusPlayer::onParingAssistInfo(QByteArray TPMOD, QByteArray data)
{
    static constexpr Decoder<VelParkingGroupCmd> decoders[] = {
        &VelParkingGroupCmd::onParkTopText,
        &VelParkingGroupCmd::onParkCustomLabel,
        &VelParkingGroupCmd::onParkData,
    };
    route(CANBUS_HERE, TPMOD, data, decoders);
}

void CanBusPlayer::suppScreen(QByteArray data)
{
    const quint8 flags = firstByte(data);
    CANBUS_DEBUG() << data.size() << logging::hex(flags) << int(flags);
    d->screensInfo.clear();
    for (int screen = 0; screen < kScreenCount; ++screen) {
        d->screensInfo.insert(screen, bitAt(flags, screen));
        CANBUS_DEBUG() << screen << ":" << d->screensInfo.value(screen);
    }
    // Changed or not.
    Q_EMIT updateScreenInfo(d->screensInfo);
}

QMap<int, bool> CanBusPlayer::getSuppScrennInfo()
{
    return d->screensInfo;
}

void CanBusPlayer::onChangeDsp(QByteArray data)
{
    const int request = firstByte(data);
    CANBUS_DEBUG() << data.size() << request;
    if (request > int(std::size(kMoveTouches))) {
        CANBUS_ERROR() << "data is error!!!!!";
        return;
    }
    if (request > 0) {
        const auto touch = Qx::Touch(kMoveTouches[request - 1]);
        QCoreApplication::postEvent(QCoreApplication::instance(), new TouchEvent(touch, -1, 5));
        return;
    }
    const int display = d->eventHandler->srcDsplCtrl()->currentDspl();
    if (display >= kGaugesScreen && display <= kParkingScreen) {
        // Sent, not posted: the host has left the screen when this returns.
        TouchEvent leave(Qx::Touch(kLeaveTouch), -3, -1);
        QCoreApplication::sendEvent(QCoreApplication::instance(), &leave);
    }
}

void CanBusPlayer::onTextScreen(QByteArray data)
{
    CANBUS_DEBUG() << data.size() << data;
    d->menuByte0 = byteAt(data, 0);
    d->menuByte1 = byteAt(data, 1);
    d->menuByte2 = byteAt(data, 2);
    d->menuByte3 = byteAt(data, 3);
    const QList<int> menu {d->menuByte0, d->menuByte1, d->menuByte2, d->menuByte3};
    const bool minus = bitAt(byteAt(data, 4), 0);
    const bool plus = bitAt(byteAt(data, 4), 1);
    QStringList texts;
    onSplitEOFstrings(texts, data.mid(kTextScreenTexts));

    if (menu == d->menuList && minus == d->menuMinus && plus == d->menuPlus && texts == d->menuTexts)
        return;
    d->menuList = menu;
    d->menuMinus = minus;
    d->menuPlus = plus;
    d->menuTexts = texts;
    Q_EMIT updateMenuInfo(d->menuList, d->menuMinus, d->menuPlus, d->menuTexts);
}

void CanBusPlayer::getTextScreenInfo()
{
    // A screen with a single text is not announced again.
    if (d->menuList.size() > 3 && d->menuTexts.size() > 1)
        Q_EMIT updateMenuInfo(d->menuList, d->menuMinus, d->menuPlus, d->menuTexts);
}

CanBusPlayer::TextScreen CanBusPlayer::textScreen() const
{
    return {d->menuList, d->menuMinus, d->menuPlus, d->menuTexts};
}

void CanBusPlayer::onMenuPress(int menu, int item, int action)
{
    const QByteArray id = CanBusDataMap::instance()->getId(quint8(Category::TextScreen));
    CANBUS_DEBUG() << id;
    const char press[] = {char(menu), char(item), char(action)};
    Q_EMIT sendCmdData(
        buildCommand(CANBUS_HERE, firstByte(id), Command::MenuPress, {}, QByteArray(press, sizeof press)));
}

void CanBusPlayer::onReverseChanged(bool reverse, int)
{
    CANBUS_DEBUG() << reverse;
    const bool cameraInUse = isCameraInUse(CANBUS_HERE);
    if (cameraInUse && reverse)
        EventHandler::instance()->onEvent(kEnterCameraEvent);
    else if (!reverse && d->eventHandler->srcDsplCtrl()->currentDspl() == kBoxCameraView)
        EventHandler::instance()->onEvent(kLeaveCameraEvent);
}

bool CanBusPlayer::getCanbusCameraEnable()
{
    const bool cameraInUse = isCameraInUse(CANBUS_HERE);
    const int display = d->eventHandler->srcDsplCtrl()->currentDspl();
    return cameraInUse ? display != kViewWithoutCamera : display == kBoxCameraView;
}

void CanBusPlayer::onCanbusSourceDsplChange()
{
    const C::DSPLState display = d->eventHandler->srcDsplCtrl()->currentDspl();
    CANBUS_DEBUG() << display << d->connectStatus;
    if (!d->connectStatus)
        return;
    switch (int(display)) {
    case kGaugesScreen:
        VelGaugesGroupCmd::instance()->requestGaugesInfo();
        break;
    case kVehicleScreen:
        VelVehicleGroupCmd::instance()->requestVehicleInfo();
        break;
    case kClimateScreen:
        VelClimateGroupCmd::instance()->requestClimateInfo();
        break;
    case kParkingScreen:
    case kBoxCameraView:
        VelParkingGroupCmd::instance()->requestParkInfo();
        break;
    default:
        requestNormal();
        break;
    }
}

void CanBusPlayer::requestNormal()
{
    Q_EMIT sendCmdData(
        buildCommand(CANBUS_HERE, kRequestNormalId, Command::RequestData, {quint8(DataPage::Normal)}));
}

void CanBusPlayer::onSyncTimeTmrout()
{
    if (!d->connectStatus) {
        d->syncTimer.stop();
        return;
    }
    const bool needsSync = mcu::McuService::instance()->getNeedSyncTimeState();
    CANBUS_DEBUG() << needsSync;
    const QDateTime now = kddatetime::DateTimeManager::instance()->currentDateTime();
    const int interval = msToNextMinute(now.time());
    d->syncTimer.start(interval);
    if (needsSync) {
        CANBUS_DEBUG() << interval;
        syncGPSTimeToCanbus(kUnknownTime, kUnknownTime, kUnknownTime, kUnknownTime, kUnknownTime,
                            kUnknownTime);
        return;
    }
    mem::SettingsUtil *const settings = mem::SettingsUtil::instance();
    CANBUS_DEBUG() << now.toString(Qt::ISODateWithMs) << settings->getTimeFormat() << interval;
    syncGPSTimeToCanbus(now.time().minute(), now.time().hour(), now.date().day(), now.date().month(),
                        now.date().year(), settings->getTimeFormat() != 0 ? 0 : 1);
}

void CanBusPlayer::syncGPSTimeToCanbus(int minute, int hour, int day, int month, int year, int format)
{
    int century = kUnknownTime;
    int yearOfCentury = kUnknownTime;
    if (year != kUnknownTime) {
        // By the digits, so that years of less than four give numbers that overlap.
        const QString digits = QString::number(year);
        century = digits.leftRef(2).toInt();
        yearOfCentury = digits.rightRef(2).toInt();
    }
    const char time[] = {char(minute),  char(hour),          char(day),   char(month),
                         char(century), char(yearOfCentury), char(format)};
    Q_EMIT sendCmdData(buildCommand(CANBUS_HERE, kTimeId, Command::Time, {}, QByteArray(time, sizeof time)));
}

/// Whether the box's camera picture may be shown; logs what that depends on.
bool CanBusPlayer::isCameraInUse(const logging::Origin &origin) const
{
    const bool supported = d->screensInfo.value(kReverseCameraScreen);
    const bool wanted = mem::SettingsUtil::instance()->getCameraComposite(false);
    CANBUS_DEBUG_AT(origin) << d->connectStatus << supported << wanted;
    return d->connectStatus && supported && wanted;
}

} // namespace canbus

QDebug operator<<(QDebug debug, C::DSPLState state)
{
    static const QMetaEnum states =
        C::staticMetaObject.enumerator(C::staticMetaObject.indexOfEnumerator("DSPLState"));
    const char *const name = states.valueToKey(state);
    QDebugStateSaver saver(debug);
    if (name)
        debug.nospace() << name;
    else
        debug.nospace() << int(state);
    return debug;
}
