#pragma once

#include <QtCore/QObject>
#include <QtCore/QString>

namespace canbus::monitor {

/// Plays the rest of the head unit, as far as the library takes notice of it. Its slots are what can be
/// called of it, its signals what is printed of it: among them what the library asks of the user interface.
/// Needs the application object.
class HostControls : public QObject {
    Q_OBJECT

public:
    HostControls();

    bool eventFilter(QObject *watched, QEvent *event) override;

public Q_SLOTS:
    /// Shows a display, for example 75, the climate screen.
    void display(int state);
    /// Engages or releases the reverse gear.
    void reverse(bool engaged);
    /// Whether the head unit's clock is still to be synchronised.
    void needsync(bool needed);

Q_SIGNALS:
    /// The serial port is open.
    void portOpened(QString device, int baud);
    /// A display is shown, by a call or because of an event.
    void displayShown(int display);
    /// The reverse gear was engaged or released.
    void reverseChanged(bool engaged);
    /// The library has sent the user interface an event.
    void eventReceived(int event);
    /// The library has delivered a touch to the application object.
    void touch(int touch, int a, int b);
};

} // namespace canbus::monitor
