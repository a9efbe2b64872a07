#include "textscreen.h"

#include "boxsim/car/payload.h"

namespace boxsim {

namespace {

template <class Screen>
auto itemsOf(Screen &s)
{
    return std::tie(s.menu, s.minus, s.plus, s.texts);
}

} // namespace

bool operator==(const TextScreen &a, const TextScreen &b)
{
    return itemsOf(a) == itemsOf(b);
}

QByteArray textScreenPayload(const TextScreen &screen)
{
    QByteArray payload;
    append(payload, screen.menu);
    append(payload, quint8(flag(screen.minus, 0) | flag(screen.plus, 1)));
    appendTexts(payload, screen.texts);
    return payload;
}

void applyChanges(TextScreen &screen, const TextScreen &before, const TextScreen &after)
{
    applyItems(itemsOf(screen), itemsOf(before), itemsOf(after));
}

} // namespace boxsim
