#include "canbusplayer.h"

#include "canbuslog.h"
#include "canbusplayer_p.h"
#include "canbusprotocol.h"
#include "groups/velclimategroupcmd.h"
#include "link/frameformat.h"
#include "pindriver.h"
#include "serialport.h"
#include "support/bytes.h"
#include "support/text.h"
#include "support/threadsatexit.h"
#include "velcanbusprotocol.h"

#include <QtCore/QThread>

#include <displaystate.h>
#include <eventhandler.h>
#include <mcuvechiclebridge.h>
#include <srcdsplctrl.h>

namespace canbus {

namespace {

constexpr int kFirstSyncMs = 1000;

/// The view that the box's camera leads to, and the host's events for leaving it. The host gives them
/// their meaning.
constexpr int kBoxCameraView = 78;
constexpr int kLeaveBoxScreenEvent = 4;
constexpr int kLeaveCameraEvent = 36;

template <class Group>
using Decoder = void (Group::*)(QByteArray);

/// Hands `data` to the decoder of its sub-type: the index into `decoders`.
template <class Group, int Count>
void route(const log::Origin &origin, const QByteArray &TPMOD, const QByteArray &data,
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

CanBusPlayerPrivate::CanBusPlayerPrivate(CanBusPlayer *player)
    : QxPrivate<CanBusPlayer>(player)
    , eventHandler(EventHandler::instance())
{
}

bool CanBusPlayerPrivate::openPort()
{
    if (serialPort->thread() == QThread::currentThread())
        return serialPort->open(portName, baudRate);
    bool opened = false;
    const auto open = [this, &opened] { opened = serialPort->open(portName, baudRate); };
    QMetaObject::invokeMethod(serialPort, open, Qt::BlockingQueuedConnection);
    return opened;
}

void CanBusPlayerPrivate::connectAll()
{
    QObject::connect(serialPort, &SerialPort::read, q, &CanBusPlayer::readPortData);
    QObject::connect(protocol, &CanbusProtocol::notifyCanbusStatus, q, &CanBusPlayer::setCanbusConnectStatus);
    QObject::connect(protocol, &CanbusProtocol::notifyScreensInfo, q, &CanBusPlayer::suppScreen);
    QObject::connect(protocol, &CanbusProtocol::notifyClimateInfo, q, &CanBusPlayer::onClimateInfo);
    QObject::connect(protocol, &CanbusProtocol::notifyGaugesInfo, q, &CanBusPlayer::onGaugesInfo);
    QObject::connect(protocol, &CanbusProtocol::notifyVehicleInfo, q, &CanBusPlayer::onVehicleInfo);
    QObject::connect(protocol, &CanbusProtocol::notifyParingAssistInfo, q, &CanBusPlayer::onParingAssistInfo);
    QObject::connect(protocol, &CanbusProtocol::notifyScreensTransition, q, &CanBusPlayer::onChangeDsp);
    QObject::connect(protocol, &CanbusProtocol::notifyTextScreen, q, &CanBusPlayer::onTextScreen);
    // By signature: a host's own protocol may declare the signal anew.
    QObject::connect(protocol, SIGNAL(onWritPortData(QByteArray)), serialPort, SLOT(writeData(QByteArray)));
    QObject::connect(McuVechicleBridge::instance(), &McuVechicleBridge::reverseChanged, q,
                     &CanBusPlayer::onReverseChanged);
    QObject::connect(eventHandler->srcDsplCtrl(), &SrcDsplCtrl::dsplAndSrcChanged, q,
                     &CanBusPlayer::onCanbusSourceDsplChange);
    QObject::connect(&syncTimer, &QTimer::timeout, q, &CanBusPlayer::onSyncTimeTmrout);
}

CanBusPlayer *CanBusPlayer::instance()
{
    static CanBusPlayer player;
    return &player;
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
    if (!protocol) {
        CANBUS_ERROR() << "no protocol: create a VelCanBusProtocol and pass it";
        return;
    }
    pinDriver::setUp();
    if (!d->serialPort)
        d->serialPort = new SerialPort;
    if (thread)
        startWorkerThread();
    if (d->openPort()) {
        CANBUS_DEBUG() << "can uart is open";
        d->protocol = protocol;
        d->connectAll();
        CANBUS_DEBUG() << "port, protocol and host are joined";
    }
    if (!thread) {
        thread = new QThread;
        d->serialPort->moveToThread(thread);
        startWorkerThread();
    }
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
    threadsAtExit::add(worker, [worker] { worker->quit(); });
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
    CANBUS_DEBUG() << TPMOD.size() << data.size();
}

void CanBusPlayer::onVehicleInfo(QByteArray TPMOD, QByteArray data)
{
    CANBUS_DEBUG() << TPMOD.size() << data.size();
}

void CanBusPlayer::onParingAssistInfo(QByteArray TPMOD, QByteArray data)
{
    CANBUS_DEBUG() << TPMOD.size() << data.size();
}

void CanBusPlayer::suppScreen(QByteArray data)
{
    CANBUS_DEBUG() << data.size();
}

void CanBusPlayer::onChangeDsp(QByteArray data)
{
    CANBUS_DEBUG() << data.size();
}

void CanBusPlayer::onTextScreen(QByteArray data)
{
    CANBUS_DEBUG() << data.size();
}

void CanBusPlayer::onReverseChanged(bool reverse, int)
{
    CANBUS_DEBUG() << reverse;
}

void CanBusPlayer::onCanbusSourceDsplChange()
{
    CANBUS_DEBUG() << d->connectStatus;
}

void CanBusPlayer::onSyncTimeTmrout()
{
    CANBUS_DEBUG() << d->connectStatus;
}

} // namespace canbus
