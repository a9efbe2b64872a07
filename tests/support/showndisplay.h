#pragma once

#include <eventhandler.h>
#include <srcdsplctrl.h>

/// Lets the host show a display, by its number.
inline void show(int display)
{
    EventHandler::instance()->srcDsplCtrl()->setCurrentDspl(C::DSPLState(display));
}
