#include "module.h"

#include <QtQml/QQmlExtensionPlugin>

/// What the QML engine loads for `import CanBus 1.0`.
class CanBusPlugin : public QQmlExtensionPlugin {
    Q_OBJECT
    Q_PLUGIN_METADATA(IID QQmlExtensionInterface_iid)

public:
    void registerTypes(const char *uri) override { canbus::qml::registerTypes(uri); }
};

#include "plugin.moc"
