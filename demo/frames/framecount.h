#pragma once

#include <QtCore/QString>

#include <atomic>

class QQuickWindow;

namespace canbus::headunit {

class Unit;

/// What a page has cost.
struct PageCost {
    QString page;
    int framesAtRest = 0;
    int updates = 0; ///< that the library has announced and that changed something
    int framesForUpdates = 0;
    int allowedForUpdates = 0; ///< one for each update where a gauge is shown, none elsewhere

    bool isGood() const { return framesAtRest == 0 && framesForUpdates <= allowedForUpdates; }
};

/// Counts what the scene graph draws, by its own signals.
class FrameCount {
public:
    /// @param window  shows the unit
    FrameCount(Unit *unit, QQuickWindow *window);

    /// Waits until the box has told everything and nothing has been drawn for a while.
    /// @return whether that came about
    bool settle();

    /// Measures one page.
    /// @param restMs  how long it is watched at rest
    /// @param changes  how often the gauges change. The library announces a change at once, and 300 ms later
    /// what it has gathered meanwhile: a text for the value that is there already.
    PageCost measure(const QString &page, int restMs, int changes);

private:
    int framesWithin(int ms);
    int framesAtRest(int ms);
    void countUpdates();

    Unit *m_unit;
    int m_updates = 0;
    bool m_hasChanged = false; // since the last update
    std::atomic<int> m_swapped {0};
    std::atomic<int> m_rendered {0};
};

} // namespace canbus::headunit
