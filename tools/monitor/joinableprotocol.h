#pragma once

#include <QtCore/QMetaMethod>

#include <velcanbusprotocol.h>

namespace canbus::monitor {

/// The protocol, and whether the facade has joined itself to it: it does so if it could open the port, and
/// has no other way of telling.
class JoinableProtocol : public VelCanBusProtocol {
public:
    bool isJoined() const
    {
        return isSignalConnected(QMetaMethod::fromSignal(&CanbusProtocol::notifyCanbusStatus));
    }
};

} // namespace canbus::monitor
