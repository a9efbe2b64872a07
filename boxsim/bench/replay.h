#pragma once

#include "boxsim/bench/script.h"
#include "recording/recording.h"

#include <QtCore/QByteArray>
#include <QtCore/QString>
#include <QtCore/QVector>

#include <memory>

namespace boxsim {

/// Plays the box's side of a recording. Pure.
///
/// - What the head unit received is sent again, in the recorded blocks and at the recorded times, noise and
///   broken frames included. Left out are the box's answers, because the bench answers what it receives now,
///   and a frame that the recording's end cuts off.
/// - It begins with the first data frame of the head unit. That is then the moment of the first block that
/// the
///   recorded head unit sent; what it had received before comes at once. Where it sent nothing, the first
///   block that it received comes at that moment.
/// - A step of the recorded times backwards, or of more than an hour forwards, is a clock that was set, and
///   taken as no time.
class Replay : public Script {
public:
    /// @param loop  begins again, so long after the last block as the blocks are apart on average, and 20 ms
    /// at
    ///   least; else the end is reported once
    /// @return the script, or null with `error` set to one line when there is nothing to play
    static std::unique_ptr<Replay> make(const canbus::recording::Recording &recording, bool loop,
                                        QString *error);

    /// Whether the recording tells the head unit that the box is ready or not. If not, it was begun with the
    /// link up, and somebody else must answer each connect request.
    ///
    /// If so, connect requests are answered here: by the recording, and by a ready reply besides while the
    /// recorded link is up, for a head unit that asks once more than the recorded one.
    bool hasHandshake() const { return m_hasHandshake; }

    void observe(const Event &event, qint64 nowMs) override;
    QVector<Instruction> advance(qint64 nowMs) override;
    qint64 dueMs() const override;
    bool isInsideFrame() const override { return m_next > 0 && m_entries.at(m_next - 1).endsInside; }

private:
    /// What a block tells the head unit about the link.
    enum class Says { Nothing, NotReady, Ready };

    struct Entry {
        qint64 timeMs = 0; ///< since the beginning
        QByteArray bytes;
        bool endsInside = false;
        Says says = Says::Nothing;
    };

    class BoxStream;

    explicit Replay(bool loop)
        : m_loop(loop)
    {
    }

    void load(const canbus::recording::Recording &recording);
    void findHandshake(const QVector<canbus::recording::Block> &blocks);
    bool mayAnswer() const { return m_owedMs != kNever && !isInsideFrame(); }
    Instruction readyReply();
    void playNext(QVector<Instruction> &due);
    void rewind();

    QVector<Entry> m_entries;
    bool m_loop;
    bool m_hasHandshake = false;
    bool m_beginsReady = false; ///< the recorded link was up at the beginning
    bool m_ready = false;       ///< the recorded link is up
    int m_next = 0;
    qint64 m_beginMs = kNever;
    qint64 m_owedMs = kNever; ///< since when a ready reply is owed
};

} // namespace boxsim
