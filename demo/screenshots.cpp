#include "screenshots.h"

#include "options.h"
#include "unit.h"
#include "waiting.h"

#include <QtCore/QDir>
#include <QtCore/QElapsedTimer>
#include <QtGui/QImage>
#include <QtQuick/QQuickItem>
#include <QtQuick/QQuickRenderControl>
#include <QtQuick/QQuickWindow>

#include <datetimemanager.h>

namespace canbus::headunit {

namespace {

constexpr int kFillMs = 30000;
constexpr int kStepMs = 20;
constexpr int kSmallestFile = 0; // of Qt's scale for PNG, which loses nothing anyway

/// Waits until a property of the screen is what it should be. @return whether it is
bool waitFor(const QQuickItem *screen, const char *property, bool wanted)
{
    QElapsedTimer clock;
    clock.start();
    while (screen->property(property).toBool() != wanted) {
        if (clock.elapsed() >= kFillMs || !letTimePass(kStepMs))
            return false;
    }
    return true;
}

/// On the parking page the car reverses; a real one is left as it is.
bool reverse(Unit *unit, bool engaged)
{
    if (!unit->box())
        return true;
    for (int sensor = 1; sensor <= 4; ++sensor)
        unit->box()->send(QStringLiteral("parking.sensor.%1=%2").arg(sensor).arg(engaged ? "true" : "false"));
    return waitFor(unit->screen(), "measures", engaged);
}

/// A window that is drawn into pictures alone.
class Canvas {
public:
    Canvas(Unit *unit, const QSize &size)
        : m_window(&m_control)
    {
        m_window.setGeometry(QRect(QPoint(), size));
        m_control.initialize(nullptr);
        unit->showIn(&m_window);
    }

    QImage draw()
    {
        m_control.polishItems();
        m_control.sync();
        return m_control.grab().convertToFormat(QImage::Format_RGB32);
    }

private:
    QQuickRenderControl m_control;
    QQuickWindow m_window;
};

bool save(const QImage &picture, const QString &path, QString *error)
{
    if (!picture.isNull() && picture.save(path, "PNG", kSmallestFile))
        return true;
    *error = picture.isNull() ? QStringLiteral("the page could not be drawn")
                              : QStringLiteral("cannot write %1").arg(path);
    return false;
}

bool takePage(Unit *unit, Canvas *canvas, const QString &page, const QString &folder, QString *error)
{
    if (!reverse(unit, page == QLatin1String("parking"))) {
        *error = QStringLiteral("the simulated box does not answer");
        return false;
    }
    unit->screen()->setProperty("page", page);
    // The figures of the link are looked at from time to time.
    if (!letTimePass(page == QLatin1String("link") ? 600 : 2 * kStepMs))
        return false;
    for (const bool isNight : {false, true}) {
        unit->screen()->setProperty("night", isNight);
        if (!letTimePass(kStepMs))
            return false;
        const QString name = page + QLatin1String(isNight ? "-night.png" : "-day.png");
        if (!save(canvas->draw(), QDir(folder).filePath(name), error))
            return false;
    }
    return true;
}

bool takeAll(Unit *unit, const Options &options, QString *error)
{
    if (!QDir().mkpath(options.screenshots)) {
        *error = QStringLiteral("cannot make the folder %1").arg(options.screenshots);
        return false;
    }
    Canvas canvas(unit, options.size);
    if (!waitFor(unit->screen(), "filled", true)) {
        *error = QStringLiteral("the box has not sent everything within %1 s: is it connected?")
                     .arg(kFillMs / 1000);
        return false;
    }
    const QStringList pages = pageNames();
    for (const QString &page : pages) {
        if (!takePage(unit, &canvas, page, options.screenshots, error))
            return false;
    }
    unit->screen()->setParentItem(nullptr);
    return true;
}

} // namespace

void prepareScreenshots()
{
    QQuickWindow::setSceneGraphBackend(QSGRendererInterface::Software);
    kddatetime::DateTimeManager::instance()->setCurrentDateTime(
        QDateTime(QDate(2026, 11, 21), QTime(9, 41, 30)));
}

bool takeScreenshots(Unit *unit, const Options &options, QString *error)
{
    if (takeAll(unit, options, error))
        return true;
    if (!letTimePass(0))
        error->clear();
    return false;
}

} // namespace canbus::headunit
