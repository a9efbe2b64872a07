#include "errors.h"
#include "options.h"
#include "screenshots.h"
#include "unit.h"

#include "commandline/arguments.h"
#include "commandline/exitstatus.h"
#include "commandline/stopsignals.h"

#include <QtCore/QSocketNotifier>
#include <QtGui/QGuiApplication>
#include <QtGui/QScreen>
#include <QtQuick/QQuickItem>
#include <QtQuick/QQuickWindow>

#include <clocale>
#include <csignal>
#include <cstdio>

namespace {

using namespace canbus;
using namespace canbus::headunit;

int fail(int status, const QString &error)
{
    complain(error);
    return status;
}

int answer(const QString &text)
{
    const bool isPrinted =
        std::fputs(text.toLocal8Bit().constData(), stdout) >= 0 && std::fflush(stdout) == 0;
    return isPrinted ? kSuccess : fail(kFailure, QStringLiteral("cannot write to standard output"));
}

/// The panel's window is as large as the panel, whose sizes follow those of the head unit's window.
void fit(QQuickWindow *window, QQuickItem *panel)
{
    const auto resize = [window, panel] { window->resize(panel->size().toSize()); };
    QObject::connect(panel, &QQuickItem::widthChanged, window, resize);
    QObject::connect(panel, &QQuickItem::heightChanged, window, resize);
    panel->setParentItem(window->contentItem());
}

bool isScenario(const QString &path, QString *error)
{
    boxsim::Options options;
    options.scenario = path;
    QString report;
    return boxsim::checkScenario(options, &report, error);
}

void openWindow(QQuickWindow *window, const QString &title, const QSize &size)
{
    window->setTitle(title);
    window->resize(size);
    window->show();
    // Either window ends the program: a panel without its head unit is nothing.
    QObject::connect(window, &QWindow::visibleChanged, qApp, [](bool isVisible) {
        if (!isVisible)
            QCoreApplication::quit();
    });
}

/// Where the panel stands: beside the head unit, as far as the screen has room.
QPoint besideOf(const QQuickWindow &window, const QSize &panel)
{
    const QRect room = window.screen()->availableGeometry();
    const QPoint beside = window.geometry().topRight() + QPoint(24, 0);
    const auto within = [](int wanted, int least, int most) { return qMax(least, qMin(wanted, most)); };
    return {within(beside.x(), room.left(), room.right() + 1 - panel.width()),
            within(beside.y(), room.top(), room.bottom() + 1 - panel.height())};
}

int showUnit(Unit *unit, const Options &options)
{
    QQuickWindow window;
    window.setMinimumSize({640, 384});
    unit->showIn(&window);
    openWindow(&window, QStringLiteral("Head unit"), options.size);
    QQuickWindow panelWindow;
    std::unique_ptr<QObject> panel;
    if (options.hasPanel) {
        QString error;
        panel.reset(unit->load(QStringLiteral("panel/Panel.qml"), {}, &error));
        auto *const item = qobject_cast<QQuickItem *>(panel.get());
        if (!item)
            return fail(kFailure, error);
        fit(&panelWindow, item);
        openWindow(&panelWindow, QStringLiteral("The simulated car"), item->size().toSize());
        panelWindow.setPosition(besideOf(window, item->size().toSize()));
    }
    const int status = QCoreApplication::exec();
    unit->screen()->setParentItem(nullptr);
    return status;
}

int run(const Options &options)
{
    const bool takesPictures = !options.screenshots.isEmpty();
    prepareDrawing();
    if (takesPictures)
        prepareScreenshots();
    Unit unit(options);
    QString error;
    if (!unit.start(&error))
        return fail(kFailure, error);
    if (!takesPictures)
        return showUnit(&unit, options);
    const bool isGood = takeScreenshots(&unit, options, &error) || error.isEmpty();
    return isGood ? kSuccess : fail(kFailure, error);
}

} // namespace

int main(int argc, char *argv[])
{
    const int stopDescriptor = stopSignals::install({SIGINT, SIGTERM, SIGHUP});
    std::setlocale(LC_ALL, "");
    Options options;
    QString error;
    if (!parseOptions(argumentsOf(argc, argv), &options, &error))
        return fail(kWrongArguments, error);
    if (options.wantsHelp) {
        const QCoreApplication named(argc, argv); // the help takes the program's name from it
        return answer(helpText());
    }
    if (options.wantsVersion)
        return answer(QStringLiteral("canbus-headunit " CANBUS_VERSION "\n"));
    if (!options.scenario.isEmpty() && !isScenario(options.scenario, &error))
        return fail(kWrongArguments, error);
    takeMessages();
    if (!options.screenshots.isEmpty() && !qEnvironmentVariableIsSet("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    if (!hasDisplay())
        return fail(kFailure, noDisplayText());
    QGuiApplication application(argc, argv);
    QSocketNotifier stop(stopDescriptor, QSocketNotifier::Read);
    QObject::connect(&stop, &QSocketNotifier::activated, &application, [] { QCoreApplication::quit(); });
    return run(options);
}
