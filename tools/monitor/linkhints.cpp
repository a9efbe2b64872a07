#include "linkhints.h"

#include "standarderror.h"

namespace canbus::monitor {

namespace {

// How much it takes: less than that happens on a sound line too, or at the end of a run.
constexpr quint64 kTellingBytes = 16;
constexpr quint64 kTellingTransmissions = 2; // the first has been sent again, so it had its time
constexpr quint64 kTellingBadChecks = 3;
constexpr quint64 kTellingGivenUp = 3; // a box may have been switched on late
constexpr quint64 kTellingUnanswered = 3;
constexpr quint64 kTellingRequests = 3;

quint64 intactFrames(const LinkFigures &figures)
{
    return figures.receivedFrames + figures.receivedAcks + figures.receivedNacks;
}

quint64 unanswered(const LinkFigures &figures)
{
    const quint64 answers = figures.receivedAcks + figures.receivedNacks;
    return figures.sentFrames > answers ? figures.sentFrames - answers : 0;
}

bool hasBytesWithoutFrames(const LinkFigures &figures)
{
    return figures.receivedBytes >= kTellingBytes && intactFrames(figures) == 0;
}

bool hasHeardNothing(const LinkFigures &figures)
{
    return figures.receivedBytes == 0 && figures.sentFrames >= kTellingTransmissions;
}

bool isNoisy(const LinkFigures &figures)
{
    constexpr quint64 kOneIn = 50;
    return intactFrames(figures) > 0 && figures.badChecks >= kTellingBadChecks
        && figures.badChecks * kOneIn >= figures.receivedFrames + figures.badChecks;
}

bool hasDeafBox(const LinkFigures &figures)
{
    constexpr quint64 kOneIn = 5;
    const bool isOftenUnanswered =
        unanswered(figures) >= kTellingUnanswered && unanswered(figures) * kOneIn >= figures.sentFrames;
    return intactFrames(figures) > 0
        && (figures.linkLosses > 0 || figures.givenUp >= kTellingGivenUp || isOftenUnanswered);
}

bool isFlooded(const LinkFigures &figures)
{
    return intactFrames(figures) > 0 && figures.discardedBuffers > 0;
}

bool hasRefused(const LinkFigures &figures)
{
    return figures.refusedFull > 0;
}

bool isNeverReady(const LinkFigures &figures)
{
    return figures.receivedFrames > 0 && figures.connectRequests >= kTellingRequests
        && figures.connectionChecks == 0;
}

bool hasPortErrors(const LinkFigures &figures)
{
    return figures.portErrors > 0;
}

QString count(quint64 number, const char *one, const char *many)
{
    return QStringLiteral("%1 %2").arg(number).arg(QLatin1String(number == 1 ? one : many));
}

/// A usual cause: when it shows, and what to say then.
struct Row {
    bool (*shows)(const LinkFigures &);
    QString (*text)(const LinkFigures &);
};

const Row kRows[] {
    {hasBytesWithoutFrames,
     [](const LinkFigures &) { return QStringLiteral("bytes but no frames: check the baud rate"); }},
    {hasHeardNothing,
     [](const LinkFigures &) {
         return QStringLiteral("nothing was received: check the cable, the port and the power of the box");
     }},
    {isNoisy,
     [](const LinkFigures &figures) {
         return QStringLiteral("%1 of %2 frames had bad check bytes: noise on the line, check its cable and "
                               "ground")
             .arg(figures.badChecks)
             .arg(figures.receivedFrames + figures.badChecks);
     }},
    {hasDeafBox,
     [](const LinkFigures &figures) {
         return QStringLiteral("%1 unanswered and %2 given up: frames arrive, but the box does not answer, "
                               "check the line to it")
             .arg(count(unanswered(figures), "transmission", "transmissions"),
                  count(figures.givenUp, "command", "commands"));
     }},
    {isFlooded,
     [](const LinkFigures &figures) {
         return QStringLiteral("%1 thrown away unread: the box sends faster than one frame in 10 ms")
             .arg(count(figures.discardedBytes, "byte", "bytes"));
     }},
    {hasRefused,
     [](const LinkFigures &figures) {
         return QStringLiteral("%1 refused: too many at once, send the next when one is answered")
             .arg(count(figures.refusedFull, "command", "commands"));
     }},
    {isNeverReady,
     [](const LinkFigures &) {
         return QStringLiteral("frames but no link: the box has not reported itself ready");
     }},
    {hasPortErrors,
     [](const LinkFigures &figures) {
         return QStringLiteral("%1 of the port: --verbose shows the library's lines about them")
             .arg(count(figures.portErrors, "error", "errors"));
     }},
};

} // namespace

QStringList hintsFor(const LinkFigures &figures)
{
    QStringList hints;
    for (const Row &row : kRows) {
        if (row.shows(figures))
            hints << row.text(figures);
    }
    return hints;
}

void complainOf(const LinkFigures &figures)
{
    const QStringList hints = hintsFor(figures);
    for (const QString &hint : hints)
        standardError::complain(QStringLiteral("hint: ") + hint);
}

} // namespace canbus::monitor
