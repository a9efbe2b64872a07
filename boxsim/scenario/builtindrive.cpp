#include "builtindrive.h"

#include <QtCore/QFile>

// The macro declares a function, which has to be a global one.
static void registerBuiltinDrive()
{
    Q_INIT_RESOURCE(builtindrive);
}

namespace boxsim {

Scenario builtinDrive()
{
    registerBuiltinDrive();
    QFile file(QStringLiteral(":/boxsim/builtin-drive.json"));
    Scenario scenario;
    QString error;
    if (!file.open(QIODevice::ReadOnly) || !readScenario(file.readAll(), file.fileName(), &scenario, &error))
        qFatal("%s", qPrintable(error));
    return scenario;
}

} // namespace boxsim
