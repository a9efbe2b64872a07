#include "port.h"

#include "commandline/devicename.h"

#include <QtCore/QMetaMethod>
#include <QtSerialPort/QSerialPort>

#include <canbusplayer.h>
#include <velcanbusprotocol.h>

namespace canbus::headunit {

namespace {

/// The protocol, and whether the facade has joined itself to it: it does so if it could open the port, and
/// has no other way of telling.
class JoinableProtocol : public VelCanBusProtocol {
public:
    bool isJoined() const
    {
        return isSignalConnected(QMetaMethod::fromSignal(&CanbusProtocol::notifyCanbusStatus));
    }
};

/// Why a port does not open. Asked only after the library has failed to open it.
QString reasonOf(const QString &device, int baud)
{
    QSerialPort port(device);
    port.setBaudRate(baud);
    if (port.open(QIODevice::ReadWrite))
        return QStringLiteral("it was not free a moment ago: try again");
    return port.errorString() + QStringLiteral(": name the box's device with --port, or take --simulate");
}

} // namespace

std::unique_ptr<VelCanBusProtocol> openPort(const QString &device, int baud, QString *error)
{
    auto protocol = std::make_unique<JoinableProtocol>();
    CanBusPlayer::instance()->setUartPort(device, baud);
    CanBusPlayer::instance()->init(protocol.get());
    if (protocol->isJoined())
        return protocol;
    *error = QStringLiteral("cannot open %1 at %2 baud: %3")
                 .arg(deviceTried(device), QString::number(baud), reasonOf(device, baud));
    return nullptr;
}

} // namespace canbus::headunit
