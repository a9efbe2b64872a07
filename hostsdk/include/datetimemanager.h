#pragma once

#include <QtCore/QDateTime>
#include <QtCore/QObject>

namespace kddatetime {

/// The head unit's clock.
///
/// A process-wide singleton that is never deleted by its users.
///
/// @thread{The host's main thread, to which it belongs.}
class DateTimeManager : public QObject {
    Q_OBJECT

public:
    /// The one clock, built on first use and destroyed at process exit.
    /// @return never null
    static DateTimeManager *instance();

    /// The date and time now.
    /// @param timeSpec  whether the moment is told as local time or as UTC
    /// @return valid always
    QDateTime currentDateTime(Qt::TimeSpec timeSpec = Qt::LocalTime) const;

    /// Stops the clock at a moment, for tests. Added by the reference host.
    /// @param fixed  what currentDateTime() tells from now on; an invalid one returns to the real clock
    void setCurrentDateTime(const QDateTime &fixed);

private:
    DateTimeManager() = default;

    QDateTime m_fixed;
};

} // namespace kddatetime
