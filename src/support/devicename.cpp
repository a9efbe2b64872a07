#include "devicename.h"

namespace canbus {

QString deviceTried(const QString &name)
{
    for (const auto &beginning : {QStringLiteral("/"), QStringLiteral("./"), QStringLiteral("../")}) {
        if (name.startsWith(beginning))
            return name;
    }
    return QStringLiteral("%1 (tried /dev/%1)").arg(name);
}

} // namespace canbus
