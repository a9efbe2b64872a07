#include "errors.h"
#include "framecount.h"
#include "options.h"
#include "screenshots.h"
#include "unit.h"

#include "commandline/exitstatus.h"

#include <QtCore/QCommandLineParser>
#include <QtGui/QGuiApplication>
#include <QtQuick/QQuickItem>
#include <QtQuick/QQuickWindow>

#include <cstdio>

using namespace canbus;
using namespace canbus::headunit;

namespace {

int fail(int status, const QString &error)
{
    complain(error);
    return status;
}

void print(const PageCost &cost)
{
    const QByteArray updates = cost.updates == 0 ? "-" : QByteArray::number(cost.updates);
    const QByteArray frames = cost.updates == 0 ? "-" : QByteArray::number(cost.framesForUpdates);
    std::printf("%-10s %14d %16s %20s   %s\n", qPrintable(cost.page), cost.framesAtRest, updates.constData(),
                frames.constData(), cost.isGood() ? "good" : "TOO MANY");
    std::fflush(stdout);
}

int count(int restMs, int changes)
{
    Options options;
    options.simulates = true;
    options.parks = true;
    Unit unit(options);
    unit.host()->setFollowsBox(false);
    QString error;
    if (!unit.start(&error))
        return fail(kFailure, error);
    QQuickWindow window;
    unit.showIn(&window);
    window.resize(options.size);
    FrameCount frames(&unit, &window);
    window.show();
    if (!frames.settle())
        return fail(kFailure, QStringLiteral("the screen does not come to rest, or draws nothing at all"));
    std::printf("%-10s %14s %16s %20s\n", "page", "frames at rest", "gauge updates", "frames for updates");
    bool isGood = true;
    const QStringList pages = pageNames();
    for (const QString &page : pages) {
        const PageCost cost = frames.measure(page, restMs, changes);
        isGood = isGood && cost.isGood() && (page == QLatin1String("link") || cost.updates >= changes);
        print(cost);
    }
    unit.screen()->setParentItem(nullptr);
    return isGood ? kSuccess : fail(kFailure, QStringLiteral("more is drawn than has changed"));
}

} // namespace

int main(int argc, char *argv[])
{
    takeMessages();
    if (!hasDisplay())
        qputenv("QT_QPA_PLATFORM", "offscreen");
    QGuiApplication application(argc, argv);
    QCommandLineParser parser;
    parser.setApplicationDescription(QStringLiteral(
        "Counts the frames that the head unit draws at rest and for gauge updates, page by page."));
    parser.addHelpOption();
    parser.addOptions({{QStringLiteral("rest"), QStringLiteral("Watch each page at rest for so long (3000)."),
                        QStringLiteral("MS"), QStringLiteral("3000")},
                       {QStringLiteral("changes"), QStringLiteral("Change the gauges so often (20)."),
                        QStringLiteral("N"), QStringLiteral("20")}});
    parser.process(application);
    const int restMs = parser.value(QStringLiteral("rest")).toInt();
    const int changes = parser.value(QStringLiteral("changes")).toInt();
    if (restMs <= 0 || changes <= 0)
        return fail(kWrongArguments, QStringLiteral("--rest and --changes take whole numbers above 0"));
    prepareDrawing();
    prepareScreenshots(); // the same fixed clock, drawn in software
    return count(restMs, changes);
}
