#include "builtindrive.h"

#include <QtCore/QtGlobal>

// The macro declares a function, which has to be a global one.
static void registerBuiltinDrive()
{
    Q_INIT_RESOURCE(builtindrive);
}

namespace boxsim {

Scenario builtinDrive()
{
    registerBuiltinDrive();
    Scenario scenario;
    QString error;
    if (!loadScenario(QStringLiteral(":/boxsim/builtin-drive.json"), &scenario, &error))
        qFatal("%s", qPrintable(error));
    return scenario;
}

} // namespace boxsim
