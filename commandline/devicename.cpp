#include "devicename.h"

namespace canbus {

QString devicePath(const QString &name)
{
    for (const auto &beginning : {QStringLiteral("/"), QStringLiteral("./"), QStringLiteral("../")}) {
        if (name.startsWith(beginning))
            return name;
    }
    return QStringLiteral("/dev/") + name;
}

QString deviceTried(const QString &name)
{
    const QString path = devicePath(name);
    return path == name ? name : QStringLiteral("%1 (tried %2)").arg(name, path);
}

} // namespace canbus
