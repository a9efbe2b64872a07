#pragma once

#include <QtCore/QObject>

namespace mcu {

/// The services of the head unit's microcontroller: it knows whether the clock still has to be set.
///
/// A process-wide singleton that is never deleted by its users.
///
/// @thread{The host's main thread, to which it belongs.}
class McuService : public QObject {
    Q_OBJECT

public:
    /// The one service, built on first use and destroyed at process exit.
    /// @return never null
    static McuService *instance();

    /// Whether the head unit's time must still be synchronised and is not to be trusted before.
    /// @return true while it must
    bool getNeedSyncTimeState() const;

    /// Plays the state of the clock. Added by the reference host.
    /// @param needed  what getNeedSyncTimeState() returns from now on; it is false when the process starts
    void setNeedSyncTimeState(bool needed);

private:
    McuService() = default;

    bool m_needSyncTime = false;
};

} // namespace mcu
