#pragma once

#include "boxsim/line/faults.h"
#include "boxsim/line/random.h"
#include "boxsim/line/times.h"

#include <QtCore/QByteArray>
#include <QtCore/QHash>
#include <QtCore/QString>
#include <QtCore/QVector>

namespace boxsim {

/// The way from the box to the serial line, with all that can be wrong on it. Pure: blocks and times in,
/// blocks and times out; what goes wrong is drawn from a seed.
///
/// A block passes these stations, and the order of the blocks is kept:
/// 1. A data frame may get a check byte that does not fit, escaped as it has to be.
/// 2. Each byte may get a foreign one before it, or get lost, or have a bit turned over and come twice.
/// 3. With `mergeMs`, a block waits so long for others that then go out with it as one.
/// 4. The block is cut: into single bytes, at a place that moves by one byte from each block to the next of
///    the same length, or behind its first bytes. With `pauseMs` there is a wait between the pieces, and a
///    block that no other fault cuts is cut in its middle.
///
/// Noise comes between the blocks, never between the pieces of one. It is no subject to the other faults.
class FaultyLine {
public:
    /// What has been done to the bytes.
    struct Fault {
        QString what;     ///< one line, for example "byte 5 flipped: 12 became 13"
        QByteArray bytes; ///< those that it is about as they go out, or empty
    };

    explicit FaultyLine(quint32 seed = kDefaultSeed);

    /// What is wrong from `nowMs` on.
    void setFaults(const Faults &faults, qint64 nowMs);

    /// Takes a frame of the box: a data frame or an answer.
    void writeFrame(const QByteArray &frame, qint64 nowMs);

    /// Takes bytes of any kind, which pass station 1 untouched.
    void writeBytes(const QByteArray &bytes, qint64 nowMs);

    /// Lets time pass. @return the blocks that go out, in order
    QVector<QByteArray> advance(qint64 nowMs);

    /// When advance() will have something to do, or kNever.
    qint64 dueMs() const;

    /// Forgets what is on its way: the line is gone.
    void clear();

    /// What was done to the bytes since the last call, in order.
    QVector<Fault> takeFaults();

private:
    struct Piece {
        qint64 dueMs;
        QByteArray bytes;
    };

    QByteArray withWrongCheck(const QByteArray &frame);
    QByteArray damaged(const QByteArray &block);
    void putOut(const QByteArray &block, qint64 nowMs);
    QVector<QByteArray> cut(const QByteArray &block);
    int movingCut(int size);
    void releaseMerged(qint64 nowMs);
    void makeNoise(qint64 nowMs);
    qint64 noiseGapUs();
    void tell(const QString &what, const QByteArray &bytes = {});

    Faults m_faults;
    Random m_frames;
    Random m_bytes;
    Random m_noise;
    QVector<Piece> m_pieces;
    QByteArray m_merged;
    qint64 m_mergedDueMs = kNever;
    qint64 m_noiseDueUs = kNever;
    QHash<int, int> m_cuts; ///< by length of a block: where the last one was cut
    QVector<Fault> m_told;
};

} // namespace boxsim
