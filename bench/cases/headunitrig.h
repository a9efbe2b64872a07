#pragma once

#include "player/canbusplayer.h"
#include "velcanbusprotocol.h"

#include <pseudoterminal.h>

#include <QtCore/QCoreApplication>
#include <QtCore/QElapsedTimer>
#include <QtCore/QEventLoop>

namespace bench {

/// The library as a head unit runs it, on a pseudo-terminal: made on first use, ends with the process.
class HeadUnitRig {
public:
    static HeadUnitRig &instance()
    {
        static HeadUnitRig rig;
        return rig;
    }

    PseudoTerminal line;
    canbus::VelCanBusProtocol *const protocol = new canbus::VelCanBusProtocol;

    static canbus::CanBusPlayer *player() { return canbus::CanBusPlayer::instance(); }

    /// Runs the main thread's events for so long.
    static void runEvents(int milliseconds)
    {
        QElapsedTimer clock;
        clock.start();
        while (!clock.hasExpired(milliseconds))
            QCoreApplication::processEvents(QEventLoop::AllEvents, 5);
    }

private:
    HeadUnitRig()
    {
        player()->setUartPort(line.name(), 57600);
        player()->init(protocol);
    }
};

} // namespace bench
