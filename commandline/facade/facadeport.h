#pragma once

#include <QtCore/QString>

namespace canbus {

class VelCanBusProtocol;

/// Has the facade open a port and join itself to the protocol.
/// @return whether it has
bool openFacadePort(const QString &device, int baudRate, VelCanBusProtocol *protocol);

/// What to tell the user after that has failed.
/// @param advice  what to do where the device is the wrong one
QString facadePortError(const QString &device, int baudRate, const QString &advice);

} // namespace canbus
