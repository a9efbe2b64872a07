#include "targets.h"

#include "hostcontrols.h"

#include <canbusplayer.h>
#include <velclimategroupcmd.h>
#include <velgaugesgroupcmd.h>
#include <velparkinggroupcmd.h>
#include <velvehiclegroupcmd.h>

namespace canbus::monitor {

/// An object is a row here and nothing elsewhere.
Targets allTargets(HostControls *host)
{
    return {
        {QStringLiteral("player"), CanBusPlayer::instance()},
        {QStringLiteral("climate"), VelClimateGroupCmd::instance()},
        {QStringLiteral("gauges"), VelGaugesGroupCmd::instance()},
        {QStringLiteral("vehicle"), VelVehicleGroupCmd::instance()},
        {QStringLiteral("parking"), VelParkingGroupCmd::instance()},
        {QStringLiteral("host"), host},
    };
}

} // namespace canbus::monitor
