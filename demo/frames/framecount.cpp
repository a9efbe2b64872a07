#include "framecount.h"

#include "simulatedbox.h"
#include "unit.h"
#include "waiting.h"

#include <QtCore/QElapsedTimer>
#include <QtQuick/QQuickItem>
#include <QtQuick/QQuickWindow>

#include <velgaugesgroupcmd.h>

#include <algorithm>

namespace canbus::headunit {

namespace {

constexpr int kQuietMs = 700;
constexpr int kSettleMs = 20000;
constexpr int kPaceMs = 350; // above the 300 ms in which the library gathers updates

} // namespace

FrameCount::FrameCount(Unit *unit, QQuickWindow *window)
    : m_unit(unit)
{
    QObject::connect(
        window, &QQuickWindow::frameSwapped, window, [this] { ++m_swapped; }, Qt::DirectConnection);
    QObject::connect(
        window, &QQuickWindow::afterRendering, window, [this] { ++m_rendered; }, Qt::DirectConnection);
    countUpdates();
}

int FrameCount::framesWithin(int ms)
{
    const int swapped = m_swapped;
    const int rendered = m_rendered;
    letTimePass(ms);
    return std::max(m_swapped - swapped, m_rendered - rendered);
}

bool FrameCount::settle()
{
    QElapsedTimer clock;
    clock.start();
    while (clock.elapsed() < kSettleMs) {
        if (framesWithin(kQuietMs) == 0 && m_unit->screen()->property("filled").toBool())
            return m_rendered > 0;
    }
    return false;
}

/// The link page shows what the line does: there, a time without traffic is looked for.
int FrameCount::framesAtRest(int ms)
{
    int least = framesWithin(ms);
    for (int again = 0; least > 0 && again < 2 && m_unit->screen()->property("page") == QLatin1String("link");
         ++again)
        least = std::min(least, framesWithin(ms));
    return least;
}

/// The group announces texts, values and shift together, shift last.
void FrameCount::countUpdates()
{
    VelGaugesGroupCmd *const gauges = VelGaugesGroupCmd::instance();
    QObject::connect(gauges, &VelGaugesGroupCmd::updateGaugeValueText, m_unit->screen(),
                     [this, last = QStringList()](const QStringList &texts) mutable {
                         m_hasChanged = m_hasChanged || texts != last;
                         last = texts;
                     });
    QObject::connect(gauges, &VelGaugesGroupCmd::updateGaugeValue, m_unit->screen(),
                     [this, last = QList<int>()](const QList<int> &values) mutable {
                         m_hasChanged = m_hasChanged || values != last;
                         last = values;
                     });
    QObject::connect(gauges, &VelGaugesGroupCmd::updateGaugeShift, m_unit->screen(), [this] {
        m_updates += m_hasChanged ? 1 : 0;
        m_hasChanged = false;
    });
}

PageCost FrameCount::measure(const QString &page, int restMs, int changes)
{
    PageCost cost;
    cost.page = page;
    m_unit->screen()->setProperty("page", page);
    settle();
    cost.framesAtRest = framesAtRest(restMs);
    if (page == QLatin1String("link"))
        return cost; // each update is traffic, which it shows
    const int before = m_swapped;
    m_updates = 0;
    for (int i = 0; i < changes; ++i) {
        m_unit->box()->send(QStringLiteral("measured.speed=%1").arg(20 + 10 * (i % 16)));
        letTimePass(kPaceMs);
    }
    letTimePass(kQuietMs);
    cost.updates = m_updates;
    cost.framesForUpdates = m_swapped - before;
    cost.allowedForUpdates = page == QLatin1String("gauges") ? cost.updates : 0;
    return cost;
}

} // namespace canbus::headunit
