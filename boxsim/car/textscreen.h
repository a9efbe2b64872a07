#pragma once

#include <QtCore/QByteArray>
#include <QtCore/QStringList>

#include <array>

namespace boxsim {

/// What the box shows on its menu or text screen.
struct TextScreen {
    std::array<quint8, 4> menu {}; ///< the menu's identifiers
    bool minus = false;            ///< a minus button is offered
    bool plus = false;             ///< a plus button is offered
    QStringList texts;
};

bool operator==(const TextScreen &a, const TextScreen &b);

/// Payload of a text screen frame, whose MOD is 0: four identifiers, the flags, each text in UTF-8, closed by
/// a zero.
QByteArray textScreenPayload(const TextScreen &screen);

/// Takes over into `screen` the items that differ between `before` and `after`, and leaves the others.
void applyChanges(TextScreen &screen, const TextScreen &before, const TextScreen &after);

} // namespace boxsim
