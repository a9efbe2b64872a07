#pragma once

#include <QtCore/QObject>

/// The head unit's link to its microcontroller, as far as the vehicle's wires are concerned: it reports the
/// reverse gear.
///
/// A process-wide singleton that is never deleted by its users.
///
/// @thread{The host's main thread, to which it belongs.}
/// @emitted{The host's main thread.}
class McuVechicleBridge : public QObject {
    Q_OBJECT

public:
    /// The one bridge, built on first use and destroyed at process exit.
    /// @return never null
    static McuVechicleBridge *instance();

public Q_SLOTS:
    /// Plays the reverse gear. Added by the reference host.
    ///
    /// @param engaged  whether reverse is engaged; it is not when the process starts
    /// Emits reverseChanged() with 0 as its second argument, only when `engaged` differs from the last
    /// call's.
    void setReverse(bool engaged);

Q_SIGNALS:
    /// The reverse gear was engaged or released.
    /// @param reverse  true when engaged
    /// @param detail  the microcontroller's own detail; the library ignores it
    void reverseChanged(bool reverse, int detail);

private:
    McuVechicleBridge() = default;

    bool m_engaged = false;
};
