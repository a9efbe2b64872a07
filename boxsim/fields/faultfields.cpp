#include "fieldrows.h"

namespace boxsim {

namespace {

constexpr Range kCount {0, 1000000};
constexpr Range kShare {0, 1};
constexpr Range kBytesASecond {0, 5760}; // as many as the line carries at 57600 baud
constexpr Range kFrameBytes {0, 4096};
constexpr Range kMilliseconds {0, 60000};

using Rows = FieldRows<Faults>;

void addAnswerFaults(Rows &rows)
{
    rows.add("dropFirstAnswers", &Faults::dropFirstAnswers, "so many answers, from here on, are not sent",
             kCount)
        .add("dropAnswers", &Faults::dropAnswers, "share of answers that are not sent", kShare)
        .add("nackAnswers", &Faults::nackAnswers, "share of answers that are negative ones", kShare)
        .add("wrongIds", &Faults::wrongIds, "share of answers that carry another id", kShare)
        .add("wrongChecks", &Faults::wrongChecks, "share of data frames with a wrong check byte", kShare);
}

void addByteFaults(Rows &rows)
{
    rows.add("flipBytes", &Faults::flipBytes, "share of bytes of which one bit is turned over", kShare)
        .add("loseBytes", &Faults::loseBytes, "share of bytes that get lost", kShare)
        .add("doubleBytes", &Faults::doubleBytes, "share of bytes that come twice", kShare)
        .add("insertBytes", &Faults::insertBytes, "share of bytes that have a foreign byte before them",
             kShare)
        .add("noise", &Faults::noise, "foreign bytes a second between the frames", kBytesASecond);
}

void addBlockFaults(Rows &rows)
{
    rows.add("split", &Faults::split, "every byte is a block of its own")
        .add("splitAt", &Faults::splitAt, "bytes of the first of two blocks of each frame; 0 leaves it whole",
             kFrameBytes)
        .add("splitRound", &Faults::splitRound,
             "each frame is cut in two, one byte later than the last one of its length")
        .add("mergeMs", &Faults::mergeMs, "what is written within so many milliseconds is one block",
             kMilliseconds)
        .add("pauseMs", &Faults::pauseMs,
             "milliseconds between the pieces of a frame; a whole one is cut in its middle", kMilliseconds);
}

} // namespace

QVector<FieldRow> faultRows()
{
    Rows rows(
        "fault", [](auto &state) -> auto & { return state.faults; });
    addAnswerFaults(rows);
    addByteFaults(rows);
    addBlockFaults(rows);
    rows.add("silence", &Faults::silence, "the box hears, and neither answers nor sends")
        .add("notReadyReplies", &Faults::notReadyReplies,
             "so many connect requests, from here on, are answered with \"not ready\"", kCount);
    return rows.rows();
}

} // namespace boxsim
