#include "hostcontrols.h"

#include <displaystate.h>
#include <eventhandler.h>
#include <mcuservice.h>
#include <mcuvechiclebridge.h>
#include <srcdsplctrl.h>

namespace canbus::monitor {

void HostControls::display(int state)
{
    EventHandler::instance()->srcDsplCtrl()->setCurrentDspl(C::DSPLState(state));
}

void HostControls::reverse(bool engaged)
{
    McuVechicleBridge::instance()->setReverse(engaged);
}

void HostControls::needsync(bool needed)
{
    mcu::McuService::instance()->setNeedSyncTimeState(needed);
}

} // namespace canbus::monitor
