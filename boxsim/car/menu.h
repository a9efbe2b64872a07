#pragma once

#include "boxsim/car/textscreen.h"

namespace boxsim {

/// The pages of the simulated car's menu: page 0 leads to the others, each of those has lines to choose from
/// and a value that plus and minus change.
constexpr int kMenuPages = 4;

constexpr int kHighestMenuValue = 10;

/// The value that a page begins with.
constexpr int kFirstMenuValue = 5;

/// A page of the menu as the text screen shows it.
///
/// The identifiers are the page, the chosen line, the number of lines and the value; page 0 has no value and
/// says 0. The texts are the page's title and its lines, on the pages with a value that value behind them.
/// Minus and plus are offered while the value can change that way.
/// @param page  0..3
/// @param line  0 and on
/// @param value  0..10
TextScreen menuScreen(int page, int line = 0, int value = kFirstMenuValue);

/// What a press on the menu does. The link gives its three numbers no meaning; this is what the box makes
/// of them:
///
/// | press | effect |
/// |---|---|
/// | on a menu that is not shown | shows that page |
/// | item n of menu 0, action 0 | shows page n + 1 |
/// | item n of another menu, action 0 | chooses line n |
/// | item behind the last one of another menu, action 0 | shows page 0 |
/// | action 1 on a menu with a value | the value is 1 less, 0 at least |
/// | action 2 on a menu with a value | the value is 1 more, 10 at most |
///
/// Any other press changes nothing.
void pressMenu(TextScreen &screen, quint8 menu, quint8 item, quint8 action);

} // namespace boxsim
