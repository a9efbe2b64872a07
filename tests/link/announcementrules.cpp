#include "announcementrules.h"

#include <eventhandler.h>
#include <srcdsplctrl.h>

#include <algorithm>
#include <iterator>

using itemtable::Announcement;
using itemtable::Announcements;

namespace {

constexpr int kDelayMs = 300;

constexpr quint8 kGauges = 4;
constexpr quint8 kGaugesState = 5;
constexpr int kShortestGaugesState = 13;
constexpr quint8 kVehicle = 5;
constexpr quint8 kVehicleState = 2;
constexpr int kShortestVehicleState = 3;
constexpr quint8 kTransition = 7;

const char kOnChange[] = "an item is announced when it changes, and where its rule says so";
const char kThrottled[] = "the gauges' values are announced at once and 300 ms later";
const char kInTime[] = "between frames nothing is announced but what was put off by 300 ms";
const char kTouches[] = "a screens transition becomes one touch of the host";
const char kConnectStatus[] = "canbusConnectStatus never repeats a value, and tells each change";

struct Rows {
    int shift = itemtable::rowOf("updateGaugeShift");
    int values = itemtable::rowOf("updateGaugeValue");
    int valueTexts = itemtable::rowOf("updateGaugeValueText");
    int tireTexts = itemtable::rowOf("updateVehicleTireText");
};

const Rows &rows()
{
    static const Rows all;
    return all;
}

bool isThrottled(const Announcement &announcement)
{
    return itemtable::allRows()[std::size_t(announcement.row)].rule == itemtable::Rule::Throttled;
}

/// Takes the throttled ones out of the list.
Announcements takeThrottledOf(Announcements &all)
{
    const auto first = std::stable_partition(all.begin(), all.end(),
                                             [](const Announcement &each) { return !isThrottled(each); });
    Announcements throttled(first, all.end());
    all.erase(first, all.end());
    return throttled;
}

QString text(const Announcements &announcements)
{
    QStringList parts;
    for (const Announcement &each : announcements) {
        QString part = QLatin1String(itemtable::allRows()[std::size_t(each.row)].signal);
        for (const int number : each.value.numbers)
            part += QStringLiteral(" %1").arg(number);
        parts += part + QLatin1String(" '") + each.value.texts.join(QLatin1String("' '")) + QLatin1Char('\'');
    }
    return parts.join(QLatin1String(", "));
}

} // namespace

AnnouncementRules::AnnouncementRules(Findings &findings, WireCounts &counts)
    : m_findings(findings)
    , m_counts(counts)
{
}

void AnnouncementRules::frameTaken(quint8 category, quint8 mod, const QByteArray &payload)
{
    const itemtable::Items before = m_items;
    Announcements due = m_items.receive(category, mod, payload);
    takeThrottledOf(due);
    Announcements heard = m_heard.take();
    const Announcements heardThrottled = takeThrottledOf(heard);
    compare(heard, due, kOnChange);
    compare(heardThrottled, throttledBy(before, category, mod, payload), kThrottled);
    const bool hasTires =
        category == kVehicle && mod == kVehicleState && payload.size() >= kShortestVehicleState;
    if (hasTires && m_delayedMs == kNever && isNews(rows().tireTexts, before))
        m_delayedMs = m_findings.now() + kDelayMs;
    if (category == kTransition)
        checkTouches(payload);
}

/// What the first of the throttled items that is new makes announced: itself and what is before it as it is
/// now, the others as they were.
Announcements AnnouncementRules::throttledBy(const itemtable::Items &before, quint8 category, quint8 mod,
                                             const QByteArray &payload)
{
    const bool isMeant = category == kGauges && mod == kGaugesState && payload.size() >= kShortestGaugesState;
    if (!isMeant || m_throttledMs != kNever)
        return {};
    const int inOrder[] = {rows().shift, rows().values, rows().valueTexts};
    const auto first =
        std::find_if(std::begin(inOrder), std::end(inOrder), [&](int row) { return isNews(row, before); });
    if (first == std::end(inOrder))
        return {};
    m_throttledMs = m_findings.now() + kDelayMs;
    Announcements all = m_items.throttled();
    for (auto later = first + 1; later < std::end(inOrder); ++later) {
        for (Announcement &each : all) {
            if (each.row == *later)
                each.value = before.stored(*later);
        }
    }
    return all;
}

void AnnouncementRules::timePassed()
{
    Announcements due;
    const qint64 now = m_findings.now();
    const bool isThrottleDue = m_throttledMs != kNever && m_throttledMs <= now;
    const bool isDelayDue = m_delayedMs != kNever && m_delayedMs <= now;
    const bool isDelayFirst = isDelayDue && (!isThrottleDue || m_delayedMs < m_throttledMs);
    const Announcements delayed = isDelayDue ? m_items.delayed() : Announcements();
    if (isDelayFirst)
        due = delayed;
    if (isThrottleDue) {
        const Announcements throttled = m_items.throttled();
        due.insert(due.end(), throttled.begin(), throttled.end());
        m_throttledMs = kNever;
    }
    if (isDelayDue && !isDelayFirst)
        due.insert(due.end(), delayed.begin(), delayed.end());
    if (isDelayDue)
        m_delayedMs = kNever;
    compare(m_heard.take(), due, kInTime);
}

void AnnouncementRules::connectStatusHeard(bool up)
{
    if (up == m_heardStatus)
        m_findings.broken(kConnectStatus, QStringLiteral("%1 was told again").arg(int(up)));
    m_heardStatus = up;
}

void AnnouncementRules::settled()
{
    if (m_heardStatus != m_status)
        m_findings.broken(kConnectStatus, QStringLiteral("%1 was not told").arg(int(m_status)));
}

bool AnnouncementRules::isNews(int row, const itemtable::Items &before) const
{
    const bool isEmptyNews = itemtable::allRows()[std::size_t(row)].isEmptyNews;
    return !(m_items.stored(row) == before.stored(row))
        || (isEmptyNews && m_items.stored(row).texts.isEmpty());
}

void AnnouncementRules::compare(const Announcements &heard, const Announcements &due, const char *rule)
{
    m_counts.announcements += heard.size();
    if (!(heard == due))
        m_findings.broken(rule, QStringLiteral("[%1] instead of [%2]").arg(text(heard), text(due)));
}

void AnnouncementRules::checkTouches(const QByteArray &payload)
{
    static const QList<int> kMoves {83, 81, 82, 84};
    const int display = EventHandler::instance()->srcDsplCtrl()->currentDspl();
    const int code = payload.isEmpty() ? 0 : quint8(payload.at(0));
    QList<int> due;
    if (code == 0 && display >= 73 && display <= 76)
        due += 15;
    else if (code >= 1 && code <= kMoves.size())
        due += kMoves.at(code - 1);
    if (m_heard.takeTouches() != due)
        m_findings.broken(kTouches, QStringLiteral("code %1 on display %2").arg(code).arg(display));
}
