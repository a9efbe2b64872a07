#pragma once

#include <QtCore/QList>
#include <QtCore/QMutex>
#include <QtCore/QObject>

namespace canbus {

class CanBusPlayer;

/// The protocol's reports of the link, on their way to the facade in the order in which they were made.
///
/// A report may come on the parser thread, where it has to be posted, and the next one on the facade's own,
/// which would overtake it. So both go into one list, and whichever is heard of first on the facade's thread
/// takes all that stand before it along.
class LinkReports : public QObject {
    Q_OBJECT

public:
    /// Adds a report and emits added(). Usable on every thread.
    void add(bool isUp);

    /// Hands all reports to the player, on its thread. Called from within, it leaves them to the call that is
    /// under way.
    void deliverTo(CanBusPlayer *player);

Q_SIGNALS:
    /// For the player: connected as usual, so that it is posted from other threads.
    void added();

private:
    bool isEmpty();
    bool takeFirst();

    QMutex m_mutex; // guards m_reports
    QList<bool> m_reports;
    bool m_isDelivering = false; // player's thread
};

} // namespace canbus
