#include "canbusplayer_p.h"

#include "canbusplayer.h"
#include "canbusprotocol.h"
#include "link/linkhealth_p.h"
#include "linkreports.h"
#include "serialport.h"

#include <QtCore/QSemaphore>
#include <QtCore/QThread>

#include <eventhandler.h>
#include <mcuvechiclebridge.h>
#include <srcdsplctrl.h>

namespace canbus {

namespace {

constexpr int kLastWritesMs = 50; // for what waits to be written to the line before the one to be opened

} // namespace

CanBusPlayerPrivate::CanBusPlayerPrivate(CanBusPlayer *player)
    : QxPrivate<CanBusPlayer>(player)
    , eventHandler(EventHandler::instance())
    , linkReports(std::make_shared<LinkReports>())
{
    QObject::connect(linkReports.get(), &LinkReports::added, q, [this] { linkReports->deliverTo(q); });
    // A coarse timer of this length is up to half a second early: the minute that ends would be sent.
    syncTimer.setTimerType(Qt::PreciseTimer);
}

void CanBusPlayerPrivate::countPortErrors(const CanbusProtocol *counting)
{
    if (!counting)
        return;
    QObject::disconnect(errorCount);
    const LinkHealth *const health = counting->linkHealth();
    if (!health)
        return;
    // Counted on the port's thread at once: the port may outlive the protocol, and so may the counters.
    errorCount = QObject::connect(
        serialPort, &SerialPort::error, serialPort, [counters = health->d] { counters->portErrors.add(); },
        Qt::DirectConnection);
}

bool CanBusPlayerPrivate::openPort()
{
    if (serialPort->thread() == QThread::currentThread())
        return serialPort->open(portName, baudRate);
    bool opened = false;
    QSemaphore done;
    const auto open = [&] {
        opened = serialPort->open(portName, baudRate);
        done.release();
    };
    QMetaObject::invokeMethod(serialPort, open, Qt::QueuedConnection);
    if (!done.tryAcquire(1, kLastWritesMs)) {
        serialPort->stopWriting();
        done.acquire();
        serialPort->resumeWriting();
    }
    return opened;
}

void CanBusPlayerPrivate::connectAll()
{
    QObject::connect(serialPort, &SerialPort::read, q, &CanBusPlayer::readPortData);
    QObject::connect(
        protocol, &CanbusProtocol::notifyCanbusStatus, q,
        [reports = linkReports](bool isUp) { reports->add(isUp); }, Qt::DirectConnection);
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
    QObject::connect(protocol, &QObject::destroyed, q, [this](const QObject *gone) {
        if (protocol == gone)
            protocol = nullptr;
    });
}

} // namespace canbus
