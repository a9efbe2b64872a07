#pragma once

#include <QtCore/QObject>

/// The states of the head unit's user interface: what it displays, and what it plays.
///
/// The library goes by the numbers, which are the same in every host; a host may name many more of them.
namespace C {
Q_NAMESPACE

/// What the head unit displays.
enum DSPLState : int {
    DSPL_Home = 0,        ///< an ordinary screen that has nothing to do with the box
    DSPL_NoCamera = 25,   ///< the one view that never gives way to the box's camera
    DSPL_Gauges = 73,     ///< the gauges screen
    DSPL_Vehicle = 74,    ///< the vehicle screen
    DSPL_Climate = 75,    ///< the climate screen
    DSPL_Parking = 76,    ///< the parking screen
    DSPL_TextScreen = 77, ///< the screen of the box's menus and texts
    DSPL_BoxCamera = 78   ///< the box's camera view, with the parking sensors, shown while reversing
};
Q_ENUM_NS(DSPLState)

/// What the head unit plays. The library passes it by.
enum SourceState : int {
    SRC_None = 0 ///< nothing
};
Q_ENUM_NS(SourceState)

} // namespace C
