#pragma once

#include "findings.h"
#include "wirecounts.h"

#include <heardannouncements.h>
#include <itemtable.h>

/// The rules of announcing: what the user interface hears after each frame, by a table of what payloads
/// mean. Gauges' values are announced at once and 300 ms later, tire texts 300 ms later alone.
class AnnouncementRules {
public:
    AnnouncementRules(Findings &findings, WireCounts &counts);

    /// A frame of the box was decoded.
    void frameTaken(quint8 category, quint8 mod, const QByteArray &payload);

    /// No frame was decoded since the last call of the two.
    void timePassed();

    /// The user interface has asked for everything, and may have heard anything.
    void forget() { m_heard.take(); }

    /// Facade: the link's state, as it is told to the user interface.
    void statusTold(bool up) { m_status = up; }
    void connectStatusHeard(bool up);
    void settled();

private:
    static constexpr qint64 kNever = -1;

    itemtable::Announcements throttledBy(const itemtable::Items &before, quint8 category, quint8 mod,
                                         const QByteArray &payload);
    bool isNews(int row, const itemtable::Items &before) const;
    void compare(const itemtable::Announcements &heard, const itemtable::Announcements &due,
                 const char *rule);
    void checkTouches(const QByteArray &payload);

    Findings &m_findings;
    WireCounts &m_counts;
    HeardAnnouncements m_heard;
    itemtable::Items m_items;
    qint64 m_throttledMs = kNever;
    qint64 m_delayedMs = kNever;
    bool m_status = false;
    bool m_heardStatus = false;
};
