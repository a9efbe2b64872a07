// Every type that a program can take from the installed headers, for check.sh to look at as that program's
// compiler sees it. The functions are read from the library itself.
#include <canbusdatamap.h>
#include <canbusexport.h>
#include <canbuslog.h>
#include <canbusplayer.h>
#include <canbusprotocol.h>
#include <linkhealth.h>
#include <serialport.h>
#include <velcanbusprotocol.h>
#include <velclimategroupcmd.h>
#include <velgaugesgroupcmd.h>
#include <velparkinggroupcmd.h>
#include <velvehiclegroupcmd.h>

namespace canbus {

Q_DECL_EXPORT void facade(CanBusPlayer *, CanBusPlayer::TextScreen *, CanBusDataMap *, SerialPort *)
{
}

Q_DECL_EXPORT void link(CanbusProtocol *, VelCanBusProtocol *, CanbusTickThread *, CanBusReadBuff *,
                        FrameDataFormat *, LinkHealth *, LinkHealth::Fate, LinkFigures *)
{
}

Q_DECL_EXPORT void groups(VelClimateGroupCmd *, VelGaugesGroupCmd *, VelParkingGroupCmd *,
                          VelVehicleGroupCmd *)
{
}

Q_DECL_EXPORT void log(logging::Line *, logging::Origin *, logging::Hex *, logging::AsIs *)
{
}

} // namespace canbus
