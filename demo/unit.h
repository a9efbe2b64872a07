#pragma once

#include "host.h"
#include "options.h"
#include "simulatedbox.h"

#include <QtQml/QQmlEngine>

#include <memory>

class QQuickItem;
class QQuickWindow;

namespace canbus {
class VelCanBusProtocol;
}

namespace canbus::headunit {

/// The head unit without its window: the link, the rest of the host, the QML engine and the screen that it
/// makes. One for each process.
class Unit {
public:
    explicit Unit(const Options &options);
    ~Unit();

    /// Starts the box if there is one, opens the port, and loads the screens.
    /// @param error  set to one line
    bool start(QString *error);

    Host *host() { return &m_host; }
    SimulatedBox *box() { return m_box.get(); }
    QQmlEngine *engine() { return m_engine.get(); }

    /// The screen, without a parent until somebody shows it.
    QQuickItem *screen() { return m_screen.get(); }

    /// Makes another item or window of the program's own.
    /// @param file  for example "Panel.qml"
    QObject *load(const QString &file, const QVariantMap &properties, QString *error);

    /// Puts the screen into a window, which it fills.
    void showIn(QQuickWindow *window);

private:
    bool startBox(QString *error);

    Options m_options;
    Host m_host;
    std::unique_ptr<SimulatedBox> m_box;
    std::unique_ptr<VelCanBusProtocol> m_protocol;
    std::unique_ptr<QQmlEngine> m_engine;
    std::unique_ptr<QQuickItem> m_screen;
};

/// Takes the program's own font, and what every window of it needs, before the first one is made.
void prepareDrawing();

} // namespace canbus::headunit
