#pragma once

#include <QtCore/QByteArray>

#include <array>

namespace boxsim {

/// Which of the vehicle screens the box has something for: all, unless said otherwise.
struct Screens {
    std::array<bool, 5> supported {true, true, true, true, true};
};

bool operator==(const Screens &a, const Screens &b);

/// Payload of a screens info frame, whose MOD is 0: the five flags in one byte.
QByteArray screensPayload(const Screens &screens);

/// The highest code with which the box asks the head unit to move to another screen; the lowest is 0.
constexpr int kHighestTransition = 4;

/// No request to move at all.
constexpr int kNoTransition = -1;

/// Payload of a screens transition frame, whose MOD is 0.
/// @param code  what is asked for; the head unit knows 0 to 4
QByteArray transitionPayload(quint8 code);

/// Takes over into `screens` the flags that differ between `before` and `after`, and leaves the others.
void applyChanges(Screens &screens, const Screens &before, const Screens &after);

} // namespace boxsim
