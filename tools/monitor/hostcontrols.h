#pragma once

#include <QtCore/QObject>
#include <QtCore/QString>

namespace canbus::monitor {

/// Plays the rest of the head unit, as far as the library takes notice of it. Its slots are what can be
/// called of it, its signals what is printed of it.
class HostControls : public QObject {
    Q_OBJECT

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
};

} // namespace canbus::monitor
