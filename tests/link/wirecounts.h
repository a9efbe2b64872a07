#pragma once

#include <QtCore/QMap>
#include <QtCore/QVector>

/// What a simulation has counted on the wire, by the names of the library's figures.
struct WireCounts {
    struct Traffic {
        quint64 frames = 0;
        quint64 bytes = 0;
    };

    quint64 receivedBytes = 0;
    quint64 receivedFrames = 0;
    quint64 receivedAcks = 0;
    quint64 receivedNacks = 0;
    quint64 badChecks = 0;
    quint64 discardedBuffers = 0;
    quint64 discardedBytes = 0;
    quint64 skippedBytes = 0;
    quint64 bufferHighWater = 0;
    quint64 sentBytes = 0;
    quint64 sentFrames = 0;
    quint64 sentAcks = 0;
    quint64 sentNacks = 0;
    quint64 awaitingNacks = 0;
    quint64 retransmissions = 0;
    quint64 givenUp = 0;
    quint64 refusedFull = 0;
    quint64 cacheHighWater = 0;
    quint64 answers = 0;
    quint64 timedAnswers = 0; // of frames that had been sent
    quint64 answersUs = 0;
    quint64 lastAnswerUs = 0;
    quint64 maxAnswerUs = 0;
    quint64 connectRequests = 0;
    quint64 connectionChecks = 0;
    quint64 linkLosses = 0;
    QMap<quint8, Traffic> received; ///< by TP: good data frames, and their payloads' bytes
    QMap<quint8, Traffic> sent;     ///< by TP: each transmission, and its bytes

    // What no figure of the library's tells.
    quint64 commands = 0;
    quint64 linkUps = 0;
    quint64 leftOut = 0;       ///< connect requests and checks that an overfull cache did not take
    quint64 strandings = 0;    ///< waits for a box that has said not ready
    quint64 refusedChecks = 0; ///< waits for the connection check after one that was answered by a NACK
    quint64 announcements = 0;
    quint64 wellFormedTaken = 0;    ///< frames that were compared with those that had arrived
    quint64 comparisonsStopped = 0; ///< until the line was quiet
};

/// A count that is no high-water mark and no time: those of several runs can be added.
struct NamedCount {
    const char *name;
    quint64 WireCounts::*count;
    bool isRare = false; ///< hundreds of seeds may be without one
};

inline const QVector<NamedCount> &addableCounts()
{
    static const QVector<NamedCount> all {
        {"frames received", &WireCounts::receivedFrames},
        {"bad check bytes", &WireCounts::badChecks},
        {"buffers discarded", &WireCounts::discardedBuffers},
        {"bytes skipped", &WireCounts::skippedBytes},
        {"well-formed frames compared", &WireCounts::wellFormedTaken},
        {"comparisons stopped for a while", &WireCounts::comparisonsStopped, true},
        {"closing marks awaited", &WireCounts::awaitingNacks},
        {"announcements", &WireCounts::announcements},
        {"commands", &WireCounts::commands},
        {"frames sent", &WireCounts::sentFrames},
        {"retransmissions", &WireCounts::retransmissions},
        {"frames answered", &WireCounts::answers},
        {"NACKs received", &WireCounts::receivedNacks},
        {"frames given up", &WireCounts::givenUp},
        {"commands refused", &WireCounts::refusedFull},
        {"connect requests", &WireCounts::connectRequests},
        {"connection checks", &WireCounts::connectionChecks},
        {"left out of an overfull cache", &WireCounts::leftOut},
        {"times up", &WireCounts::linkUps},
        {"times down", &WireCounts::linkLosses},
        {"waits for a box that is not ready", &WireCounts::strandings},
        {"waits after a refused connection check", &WireCounts::refusedChecks},
    };
    return all;
}
