#pragma once

namespace canbus::pinDriver {

/// Issues the board's pin-driver requests on "/dev/sp_gpio": four requests in a fixed order, all on pin 39.
/// Skipped silently where the device is missing. What the requests do is the driver's business. Call it on
/// the main thread.
void setUp();

} // namespace canbus::pinDriver
