#pragma once

#include "boxsim/fields/fields.h"

#include <QtCore/QByteArray>
#include <QtCore/QString>
#include <QtCore/QVector>

namespace boxsim {

// How long a line can be gone, and how long it is if nobody says.
constexpr int kShortestHangUpMs = 1;
constexpr int kLongestHangUpMs = 24 * 60 * 60 * 1000;
constexpr int kUsualHangUpMs = 1000;

/// Something that the bench is told to do, by a scenario, a recording or a line on standard input.
struct Instruction {
    enum class Kind {
        Set,       ///< `assignments`, all at once
        SendFrame, ///< one data frame of the box: `id`, `tp`, `mod`, `bytes` as payload; sent once as it is,
                   ///< without waiting for its acknowledgement
        SendBytes, ///< `bytes` on the line as they are
        Restart,   ///< the box is switched off and on: it forgets the link, and reports unasked
                   ///< whether it is ready
        HangUp,    ///< the line is gone, and comes back after `ms`
        Note,      ///< `text` is reported
        End,       ///< the run ends with success
        Fail,      ///< the run ends with a failure; `text` says why
    };

    Kind kind = Kind::Note;
    QVector<Assignment> assignments;
    quint8 id = 0;
    quint8 tp = 0;
    quint8 mod = 0;
    QByteArray bytes;
    int ms = 0;
    QString text;
};

} // namespace boxsim
