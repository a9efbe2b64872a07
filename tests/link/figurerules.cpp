#include "figurerules.h"

#include <QtCore/QStringList>

using canbus::LinkFigures;

namespace {

const char kFigures[] = "the link's figures are what was counted on the wire";

struct Figure {
    const char *name;
    quint64 LinkFigures::*told;
    quint64 WireCounts::*counted;
};

const Figure kPairs[] = {
    {"receivedBytes", &LinkFigures::receivedBytes, &WireCounts::receivedBytes},
    {"receivedFrames", &LinkFigures::receivedFrames, &WireCounts::receivedFrames},
    {"receivedAcks", &LinkFigures::receivedAcks, &WireCounts::receivedAcks},
    {"receivedNacks", &LinkFigures::receivedNacks, &WireCounts::receivedNacks},
    {"badChecks", &LinkFigures::badChecks, &WireCounts::badChecks},
    {"discardedBuffers", &LinkFigures::discardedBuffers, &WireCounts::discardedBuffers},
    {"discardedBytes", &LinkFigures::discardedBytes, &WireCounts::discardedBytes},
    {"skippedBytes", &LinkFigures::skippedBytes, &WireCounts::skippedBytes},
    {"bufferHighWater", &LinkFigures::bufferHighWater, &WireCounts::bufferHighWater},
    {"sentBytes", &LinkFigures::sentBytes, &WireCounts::sentBytes},
    {"sentFrames", &LinkFigures::sentFrames, &WireCounts::sentFrames},
    {"sentAcks", &LinkFigures::sentAcks, &WireCounts::sentAcks},
    {"sentNacks", &LinkFigures::sentNacks, &WireCounts::sentNacks},
    {"awaitingNacks", &LinkFigures::awaitingNacks, &WireCounts::awaitingNacks},
    {"retransmissions", &LinkFigures::retransmissions, &WireCounts::retransmissions},
    {"givenUp", &LinkFigures::givenUp, &WireCounts::givenUp},
    {"refusedFull", &LinkFigures::refusedFull, &WireCounts::refusedFull},
    {"cacheHighWater", &LinkFigures::cacheHighWater, &WireCounts::cacheHighWater},
    {"answers", &LinkFigures::answers, &WireCounts::answers},
    {"lastAnswerUs", &LinkFigures::lastAnswerUs, &WireCounts::lastAnswerUs},
    {"maxAnswerUs", &LinkFigures::maxAnswerUs, &WireCounts::maxAnswerUs},
    {"connectRequests", &LinkFigures::connectRequests, &WireCounts::connectRequests},
    {"connectionChecks", &LinkFigures::connectionChecks, &WireCounts::connectionChecks},
    {"linkLosses", &LinkFigures::linkLosses, &WireCounts::linkLosses},
};

const QMap<quint8, QString> kCategories {
    {0x01, "Version"}, {0x02, "ScreensInfo"},   {0x03, "Climate"},           {0x04, "Gauges"},
    {0x05, "Vehicle"}, {0x06, "ParkingAssist"}, {0x07, "ScreensTransition"}, {0x11, "TextScreen"},
};

const QMap<quint8, QString> kCommands {
    {0x01, "Connection"},    {0x91, "MenuPress"},    {0x92, "Settings"},
    {0x93, "ClimateButton"}, {0x94, "GaugesButton"}, {0x95, "VehicleButton"},
    {0x96, "ParkingButton"}, {0x97, "RequestData"},  {0x98, "Time"},
};

void checkTraffic(const QVariantMap &told, const QMap<quint8, WireCounts::Traffic> &counted,
                  const QMap<quint8, QString> &names, Findings &findings)
{
    QMap<QString, WireCounts::Traffic> byName;
    for (auto each = counted.begin(); each != counted.end(); ++each) {
        WireCounts::Traffic &sum = byName[names.value(each.key(), QStringLiteral("Other"))];
        sum.frames += each->frames;
        sum.bytes += each->bytes;
    }
    for (auto each = told.begin(); each != told.end(); ++each) {
        const QVariantMap traffic = each->toMap();
        const WireCounts::Traffic sum = byName.take(each.key());
        if (traffic.value(QStringLiteral("frames")).toULongLong() != sum.frames
            || traffic.value(QStringLiteral("bytes")).toULongLong() != sum.bytes)
            findings.broken(kFigures, QStringLiteral("the traffic of %1").arg(each.key()));
    }
    if (!byName.isEmpty())
        findings.broken(kFigures, QStringLiteral("%1 is missing").arg(byName.firstKey()));
}

} // namespace

void checkFigures(const LinkFigures &figures, const WireCounts &counts, Findings &findings)
{
    for (const Figure &figure : kPairs) {
        const quint64 told = figures.*figure.told;
        const quint64 counted = counts.*figure.counted;
        if (told != counted)
            findings.broken(kFigures,
                            QStringLiteral("%1 is %2 instead of %3")
                                .arg(QLatin1String(figure.name))
                                .arg(told)
                                .arg(counted));
    }
    if (counts.timedAnswers > 0 && figures.meanAnswerUs != counts.answersUs / counts.timedAnswers)
        findings.broken(kFigures, QStringLiteral("meanAnswerUs is %1").arg(figures.meanAnswerUs));
    if (figures.portErrors != 0)
        findings.broken(kFigures, QStringLiteral("portErrors is %1").arg(figures.portErrors));
    checkTraffic(figures.receivedByCategory, counts.received, kCategories, findings);
    checkTraffic(figures.sentByCommand, counts.sent, kCommands, findings);
}
