#include "framecount.h"

#include "simulatedbox.h"
#include "unit.h"

#include <QtCore/QElapsedTimer>
#include <QtCore/QTimer>
#include <QtQuick/QQuickItem>
#include <QtQuick/QQuickWindow>

#include <velgaugesgroupcmd.h>

#include <algorithm>

namespace canbus::headunit {

namespace {

constexpr int kQuietMs = 700;
constexpr int kSettleMs = 20000;
constexpr int kPaceMs = 350; // above the 300 ms in which the library gathers updates
constexpr int kUpdateMs = 5000;

void letTimePass(int ms)
{
    QEventLoop loop;
    QTimer::singleShot(ms, Qt::PreciseTimer, &loop, &QEventLoop::quit);
    loop.exec();
}

} // namespace

FrameCount::FrameCount(Unit *unit, QQuickWindow *window)
    : m_unit(unit)
{
    QObject::connect(
        window, &QQuickWindow::frameSwapped, window, [this] { ++m_swapped; }, Qt::DirectConnection);
    QObject::connect(
        window, &QQuickWindow::afterRendering, window, [this] { ++m_rendered; }, Qt::DirectConnection);
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

/// Lets the box report another speed. @return whether it has arrived
bool FrameCount::update(int speed)
{
    QEventLoop loop;
    bool hasArrived = false;
    const auto connection =
        QObject::connect(VelGaugesGroupCmd::instance(), &VelGaugesGroupCmd::updateGaugeValue, &loop, [&] {
            hasArrived = true;
            loop.quit();
        });
    QTimer::singleShot(kUpdateMs, &loop, &QEventLoop::quit);
    m_unit->box()->send(QStringLiteral("measured.speed=%1").arg(speed));
    loop.exec();
    QObject::disconnect(connection);
    return hasArrived;
}

PageCost FrameCount::measure(const QString &page, int restMs, int updates)
{
    PageCost cost;
    cost.page = page;
    m_unit->screen()->setProperty("page", page);
    settle();
    cost.framesAtRest = framesAtRest(restMs);
    if (page == QLatin1String("link"))
        return cost; // each update is traffic, which it shows
    const int before = m_swapped;
    for (int i = 0; i < updates; ++i) {
        cost.updates += update(20 + 10 * (i % 16)) ? 1 : 0;
        letTimePass(kPaceMs);
    }
    cost.framesForUpdates = m_swapped - before;
    cost.allowedForUpdates = page == QLatin1String("gauges") ? cost.updates : 0;
    return cost;
}

} // namespace canbus::headunit
