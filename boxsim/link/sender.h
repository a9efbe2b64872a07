#pragma once

#include "boxsim/line/times.h"

#include <QtCore/QByteArray>
#include <QtCore/QHash>
#include <QtCore/QVector>

namespace boxsim {

constexpr qint64 kResendIntervalMs = 300;
constexpr int kTransmissions = 3;

/// The head unit takes one frame in 10 ms, answers included. A data frame every 20 ms at most leaves it
/// every second turn for those.
constexpr qint64 kFrameSpacingMs = 20;

/// The box's own data frames on their way to the head unit. Pure: time comes in as an argument.
///
/// One frame at a time is under way, because answers name a frame by its id alone. It is sent at 0, 300 and
/// 600 ms and given up at 900 ms. Each category has eight ids of its own, used in turn: a late answer to one
/// frame then does not pass for an answer to the next, and a command of the head unit, which carries the id
/// of the category's last frame, shows whether it was sent before or after the box's reply. No id is 9F: the
/// answer to it would read like escaped bytes. An id that makes the check byte 03 behind a 9F is passed over:
/// the head unit could not read that frame.
class Sender {
public:
    /// What poll() found to do.
    struct Step {
        enum class Kind { Nothing, Sent, Resent, GaveUp };
        Kind kind = Kind::Nothing;
        quint8 id = 0;
        QByteArray bytes; ///< to be written, when it was sent or resent; else the frame that is given up
    };

    /// Puts a frame at the end. One with the same TP and MOD that was not sent yet is replaced where it
    /// stands, so that a slow line gets the newest state and not every one.
    void post(quint8 tp, quint8 mod, const QByteArray &data);

    /// Forgets the frame under way and all that wait.
    void clear();

    /// An acknowledgement came. @return whether it was for the frame under way, which is done then
    bool acknowledge(int id);

    /// Does what is due at `nowMs`.
    Step poll(qint64 nowMs);

    /// When poll() will have something to do, or kNever as things stand.
    qint64 dueMs() const;

private:
    struct Waiting {
        quint8 tp;
        quint8 mod;
        QByteArray data;
    };

    Step sendNext(qint64 nowMs);

    QVector<Waiting> m_waiting;
    QByteArray m_current; ///< empty when none is under way
    quint8 m_currentId = 0;
    int m_transmissions = 0;
    qint64 m_lastWriteMs = -kFrameSpacingMs;
    QHash<quint8, int> m_turns; ///< by TP: which of the category's ids is next
};

/// The category whose frames carry this id, as a TP byte; 0 when it is none of the box's.
quint8 categoryOfId(int id);

} // namespace boxsim
