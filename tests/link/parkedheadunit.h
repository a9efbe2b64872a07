#pragma once

#include "serial/serialport.h"
#include "velcanbusprotocol.h"

#include <canbusplayerprobe.h>
#include <hostroot.h>
#include <pseudoterminal.h>
#include <virtualtime.h>

#include <functional>
#include <memory>

/// The library as a host starts it, at the moment 0 of virtual time, with nothing received yet: the real
/// protocol joined to the real facade and its groups.
///
/// The parser thread stays out, since the receive buffer's mutex is held; the test makes the passes. The port
/// is open on a line that nothing ever comes from; what is written does not reach it. Each run continues in a
/// child process, so that each begins with this state.
class ParkedHeadUnit {
public:
    ParkedHeadUnit();
    ~ParkedHeadUnit();

    canbus::VelCanBusProtocol *protocol() const { return m_protocol.get(); }
    canbus::SerialPort *port() const;
    QTimer *syncTimer() const;

    /// Gets each command before the protocol does.
    void setCommandTap(const std::function<void(const QByteArray &)> &tap) { m_tap = tap; }

private:
    Q_DISABLE_COPY(ParkedHeadUnit)

    HostRoot m_root;
    PseudoTerminal m_line;
    std::function<void(const QByteArray &)> m_tap;
    std::unique_ptr<canbus::VelCanBusProtocol> m_protocol;
};
