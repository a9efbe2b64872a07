#pragma once

#include "methodcall.h"

namespace canbus::monitor {

class HostControls;

/// Everything that is watched and can be called, by name.
Targets allTargets(HostControls *host);

} // namespace canbus::monitor
