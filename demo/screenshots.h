#pragma once

#include <QtCore/QString>

namespace canbus::headunit {

struct Options;
class Unit;

/// Fixes what would make pictures differ, before the unit is made: the clock, and how it is drawn.
void prepareScreenshots();

/// Draws every page by day and by night into `climate-day.png` and its like, once the link is up and
/// everything has arrived. Needs no window and no display.
/// @param error  set to one line, and left empty where the program was told to end meanwhile
/// @return whether all pictures are there
bool takeScreenshots(Unit *unit, const Options &options, QString *error);

} // namespace canbus::headunit
