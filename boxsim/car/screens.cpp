#include "screens.h"

#include "boxsim/car/payload.h"

namespace boxsim {

bool operator==(const Screens &a, const Screens &b)
{
    return a.supported == b.supported;
}

QByteArray screensPayload(const Screens &screens)
{
    QByteArray payload;
    append(payload, flags(screens.supported));
    return payload;
}

QByteArray transitionPayload(quint8 code)
{
    QByteArray payload;
    append(payload, code);
    return payload;
}

void applyChanges(Screens &screens, const Screens &before, const Screens &after)
{
    applyChange(screens.supported, before.supported, after.supported);
}

} // namespace boxsim
