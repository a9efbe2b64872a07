#pragma once

#include <QtCore/QtGlobal>

namespace boxsim {

/// What is wrong with the box and with the line to it. All faults at their defaults is a sound box.
///
/// A share is a probability from 0 to 1, drawn anew for each answer, frame or byte from the run's seed: the
/// same seed, commands and times give the same faults.
struct Faults {
    // The box's answers to the head unit's frames.
    int dropFirstAnswers = 0; ///< so many answers, from here on, are not sent
    double dropAnswers = 0;   ///< share of answers that are not sent
    double nackAnswers = 0;   ///< share of answers that are negative ones
    double wrongIds = 0;      ///< share of answers that carry another id

    // The box's frames, before they go on the line.
    double wrongChecks = 0; ///< share of data frames with a check byte that does not fit

    // All bytes on the line to the head unit.
    double flipBytes = 0;   ///< share of bytes of which one bit is turned over
    double loseBytes = 0;   ///< share of bytes that get lost
    double doubleBytes = 0; ///< share of bytes that come twice
    double insertBytes = 0; ///< share of bytes that have a foreign byte before them
    double noise = 0;       ///< foreign bytes a second between the frames

    // How the bytes are cut into blocks. Where several are on, the first of the three counts.
    bool split = false;      ///< every byte is a block of its own
    bool splitRound = false; ///< each is cut in two, one byte later than the one of its length before
    int splitAt = 0;         ///< each is cut in two, the first of so many bytes; 0: whole
    int mergeMs = 0;         ///< what is written within so many milliseconds goes out as one block
    int pauseMs = 0;         ///< the wait between the pieces; what is whole is cut in its middle; 0: none

    // The box as a whole.
    bool silence = false;    ///< it hears, and neither answers nor sends
    int notReadyReplies = 0; ///< so many connect requests, from here on, are answered with "not ready"
};

} // namespace boxsim
