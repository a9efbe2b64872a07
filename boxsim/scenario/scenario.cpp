#include "scenario.h"

#include "boxsim/scenario/jsonplace.h"
#include "boxsim/scenario/scenariodeeds.h"
#include "boxsim/scenario/scenariosteps.h"

#include "commandline/oneline.h"
#include "commandline/regularfile.h"

#include <utility>

namespace boxsim {

namespace {

const QString kAbout = QStringLiteral("about");
const QString kSeed = QStringLiteral("seed");
const QString kStart = QStringLiteral("start");
const QString kLoop = QStringLiteral("loop");
const QString kSteps = QStringLiteral("steps");

Scenario read(const JsonPlace &root)
{
    Scenario scenario;
    const QStringList names {QStringLiteral("$schema"), kAbout, kSeed, kStart, kLoop, kSteps};
    if (!root.isObjectOf(names))
        return scenario;
    if (root.has(kAbout))
        scenario.about = root[kAbout].oneLine();
    scenario.hasSeed = root.has(kSeed);
    if (scenario.hasSeed)
        scenario.seed = quint32(root[kSeed].wholeNumber(0, 4294967295));
    if (root.has(kStart))
        scenario.start = readAssignments(root[kStart]);
    if (root.has(kLoop))
        scenario.loop = root[kLoop].flag();
    if (!root.has(kSteps))
        root.refuse(QStringLiteral("has no steps"));
    else
        scenario.steps = readSteps(root[kSteps]);
    if (scenario.loop && root.has(kSteps) && !takesTime(scenario.steps))
        root[kLoop].refuse(QStringLiteral("takes steps in which time passes"));
    return scenario;
}

} // namespace

int valueAt(const Curve &curve, int ms)
{
    const QVector<QPoint> &points = curve.points;
    int from = 0;
    while (from + 2 < points.size() && points.at(from + 1).x() <= ms)
        ++from;
    const QPoint &a = points.at(from);
    const QPoint &b = points.at(from + 1);
    if (ms >= b.x())
        return b.y();
    return a.y() + int(qint64(b.y() - a.y()) * (ms - a.x()) / (b.x() - a.x()));
}

bool readScenario(const QByteArray &json, const QString &name, Scenario *scenario, QString *error)
{
    JsonValue tree;
    JsonError syntax;
    if (!parseJson(json, &tree, &syntax)) {
        *error = canbus::onOneLine(name + QStringLiteral(":%1:%2: ").arg(syntax.line).arg(syntax.column)
                                   + syntax.text);
        return false;
    }
    Mistakes mistakes;
    Scenario made = read(JsonPlace(tree, QStringLiteral("the scenario"), &mistakes));
    if (!mistakes.none()) {
        *error = canbus::onOneLine(name + QStringLiteral(":%1: ").arg(mistakes.line()) + mistakes.text());
        return false;
    }
    *scenario = std::move(made);
    return true;
}

bool loadScenario(const QString &path, Scenario *scenario, QString *error)
{
    constexpr qint64 kLargestFile = 1 << 20;
    const QString name = canbus::onOneLine(path);
    QByteArray json;
    QString reason;
    if (!canbus::readRegularFile(path, kLargestFile + 1, &json, &reason)) {
        *error = QStringLiteral("cannot read %1: ").arg(name) + reason;
        return false;
    }
    if (json.size() > kLargestFile) {
        *error = name + QStringLiteral(" is larger than 1 MiB, which no scenario is");
        return false;
    }
    return readScenario(json, path, scenario, error);
}

} // namespace boxsim
