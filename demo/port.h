#pragma once

#include <QtCore/QString>

#include <memory>

namespace canbus {
class VelCanBusProtocol;
}

namespace canbus::headunit {

/// Gives the library a port and a protocol.
/// @param error  set to one line that says why the port does not open, and what to do
/// @return the protocol, which is to live as long as the link; null if the port did not open
std::unique_ptr<VelCanBusProtocol> openPort(const QString &device, int baud, QString *error);

} // namespace canbus::headunit
