#include "facadeport.h"

#include "commandline/devicename.h"

#include <QtCore/QMetaMethod>
#include <QtSerialPort/QSerialPort>

#include <canbusplayer.h>
#include <velcanbusprotocol.h>

namespace canbus {

namespace {

/// Whether the facade has joined itself to the protocol: it does so if it could open the port, and has no
/// other way of telling. Asked from outside, since a derived protocol would be half gone when the parser
/// thread ends.
bool isJoined(const VelCanBusProtocol &protocol)
{
    struct Peek : QObject {
        using QObject::isSignalConnected;
    };
    const auto isConnected = &Peek::isSignalConnected;
    return (protocol.*isConnected)(QMetaMethod::fromSignal(&CanbusProtocol::notifyCanbusStatus));
}

QString reasonOf(const QString &device, int baudRate, const QString &advice)
{
    QSerialPort port(device);
    port.setBaudRate(baudRate);
    if (port.open(QIODevice::ReadWrite))
        return QStringLiteral("it was not free a moment ago: try again");
    return QStringLiteral("%1: %2").arg(port.errorString(), advice);
}

} // namespace

bool openFacadePort(const QString &device, int baudRate, VelCanBusProtocol *protocol)
{
    CanBusPlayer::instance()->setUartPort(device, baudRate);
    CanBusPlayer::instance()->init(protocol);
    return isJoined(*protocol);
}

QString facadePortError(const QString &device, int baudRate, const QString &advice)
{
    return QStringLiteral("cannot open %1 at %2 baud: %3")
        .arg(deviceTried(device), QString::number(baudRate), reasonOf(device, baudRate, advice));
}

} // namespace canbus
