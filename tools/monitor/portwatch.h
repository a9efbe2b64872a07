#pragma once

#include <QtCore/QString>

namespace canbus::monitor {

/// Whether a serial line that is open in this process is still there. The library has the port to itself and
/// tells nobody but its figures of it, which count other errors too: the watch asks the line.
class PortWatch {
public:
    /// @param device  as it was named when it was opened, just now
    explicit PortWatch(const QString &device);

    /// Whether it is gone: the device was pulled out, or the other end of a pseudo-terminal was closed.
    bool isGone() const;

private:
    bool m_isFound = false; // the device, by its name
    int m_descriptor = -1;  // of the port, which is its owner
};

} // namespace canbus::monitor
