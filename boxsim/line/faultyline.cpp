#include "faultyline.h"

#include "frameformat.h"

#include <utility>

namespace boxsim {

namespace {

constexpr int kMarkBytes = 2;
constexpr qint64 kUsPerMs = 1000;

QString hex(quint8 byte)
{
    return QString::fromLatin1(QByteArray(1, char(byte)).toHex());
}

bool isDataFrame(const QByteArray &frame)
{
    return frame.size() > 2 * kMarkBytes && frame.startsWith(QByteArray("\x9f\x02", kMarkBytes));
}

QByteArray escaped(const QByteArray &bytes)
{
    return QByteArray(bytes).replace("\x9f", "\x9f\x9f");
}

} // namespace

FaultyLine::FaultyLine(quint32 seed)
    : m_frames(seed, Random::Stream::Frames)
    , m_bytes(seed, Random::Stream::Bytes)
    , m_noise(seed, Random::Stream::Noise)
{
}

void FaultyLine::setFaults(const Faults &faults, qint64 nowMs)
{
    const bool isNewNoise = faults.noise != m_faults.noise;
    m_faults = faults;
    if (m_faults.mergeMs == 0)
        releaseMerged(nowMs);
    if (isNewNoise)
        m_noiseDueUs = m_faults.noise > 0 ? nowMs * kUsPerMs + noiseGapUs() : kNever;
}

void FaultyLine::writeFrame(const QByteArray &frame, qint64 nowMs)
{
    const bool isWrong = isDataFrame(frame) && m_frames.happens(m_faults.wrongChecks);
    writeBytes(isWrong ? withWrongCheck(frame) : frame, nowMs);
}

void FaultyLine::writeBytes(const QByteArray &bytes, qint64 nowMs)
{
    const QByteArray block = damaged(bytes);
    if (block.isEmpty())
        return;
    if (m_faults.mergeMs == 0)
        return putOut(block, nowMs);
    if (m_merged.isEmpty())
        m_mergedDueMs = nowMs + m_faults.mergeMs;
    m_merged += block;
}

QVector<QByteArray> FaultyLine::advance(qint64 nowMs)
{
    if (m_mergedDueMs != kNever && m_mergedDueMs <= nowMs)
        releaseMerged(nowMs);
    makeNoise(nowMs);
    QVector<QByteArray> blocks;
    while (!m_pieces.isEmpty() && m_pieces.constFirst().dueMs <= nowMs)
        blocks.append(m_pieces.takeFirst().bytes);
    return blocks;
}

qint64 FaultyLine::dueMs() const
{
    const qint64 piece = m_pieces.isEmpty() ? kNever : m_pieces.constFirst().dueMs;
    const qint64 noise = m_noiseDueUs == kNever ? kNever : (m_noiseDueUs + kUsPerMs - 1) / kUsPerMs;
    return earliest({piece, m_mergedDueMs, noise});
}

void FaultyLine::clear()
{
    m_pieces.clear();
    m_merged.clear();
    m_mergedDueMs = kNever;
}

QVector<FaultyLine::Fault> FaultyLine::takeFaults()
{
    return std::exchange(m_told, {});
}

QByteArray FaultyLine::withWrongCheck(const QByteArray &frame)
{
    const QByteArray opening = frame.left(kMarkBytes);
    const QByteArray closing = frame.right(kMarkBytes);
    QByteArray content = frame.mid(kMarkBytes).chopped(kMarkBytes).replace("\x9f\x9f", "\x9f");
    const quint8 right = quint8(content.back());
    const quint8 wrong = quint8(right ^ (1 + m_frames.below(255)));
    content.back() = char(wrong);
    QByteArray made = opening + escaped(content) + closing;
    tell(QStringLiteral("wrong check byte: %1 became %2").arg(hex(right), hex(wrong)), made);
    return made;
}

QByteArray FaultyLine::damaged(const QByteArray &block)
{
    QByteArray out;
    for (int i = 0; i < block.size(); ++i) {
        const quint8 byte = quint8(block.at(i));
        quint8 sent = byte;
        if (m_bytes.happens(m_faults.insertBytes)) {
            out += char(m_bytes.byte());
            tell(QStringLiteral("%1 inserted before byte %2").arg(hex(quint8(out.back()))).arg(i));
        }
        if (m_bytes.happens(m_faults.loseBytes)) {
            tell(QStringLiteral("byte %1 lost: %2").arg(i).arg(hex(byte)));
            continue;
        }
        if (m_bytes.happens(m_faults.flipBytes)) {
            sent = quint8(byte ^ (1U << m_bytes.below(8)));
            tell(QStringLiteral("byte %1 flipped: %2 became %3").arg(i).arg(hex(byte), hex(sent)));
        }
        out += char(sent);
        if (m_bytes.happens(m_faults.doubleBytes)) {
            out += char(sent);
            tell(QStringLiteral("byte %1 doubled: %2").arg(i).arg(hex(sent)));
        }
    }
    return out;
}

void FaultyLine::putOut(const QByteArray &block, qint64 nowMs)
{
    qint64 due = m_pieces.isEmpty() ? nowMs : qMax(nowMs, m_pieces.constLast().dueMs);
    const QVector<QByteArray> pieces = cut(block);
    for (const QByteArray &piece : pieces) {
        m_pieces.append({due, piece});
        due += m_faults.pauseMs;
    }
}

QVector<QByteArray> FaultyLine::cut(const QByteArray &block)
{
    if (m_faults.split) {
        QVector<QByteArray> pieces;
        for (const char byte : block)
            pieces.append(QByteArray(1, byte));
        return pieces;
    }
    const int half = m_faults.pauseMs > 0 ? block.size() / 2 : 0;
    const int fixed = m_faults.splitAt > 0 ? m_faults.splitAt : half;
    const int place = m_faults.splitRound ? movingCut(block.size()) : fixed;
    if (place <= 0 || place >= block.size())
        return {block};
    return {block.left(place), block.mid(place)};
}

int FaultyLine::movingCut(int size)
{
    int &place = m_cuts[size];
    ++place;
    if (place >= size)
        place = 1;
    if (size > 1)
        tell(QStringLiteral("a block of %1 bytes cut behind the first %2").arg(size).arg(place));
    return place;
}

void FaultyLine::releaseMerged(qint64 nowMs)
{
    m_mergedDueMs = kNever;
    if (!m_merged.isEmpty())
        putOut(std::exchange(m_merged, {}), nowMs);
}

void FaultyLine::makeNoise(qint64 nowMs)
{
    QByteArray noise;
    while (m_noiseDueUs != kNever && m_noiseDueUs <= nowMs * kUsPerMs) {
        noise += char(m_noise.byte());
        m_noiseDueUs += noiseGapUs();
    }
    if (noise.isEmpty())
        return;
    tell(QStringLiteral("noise"), noise);
    const qint64 due = m_pieces.isEmpty() ? nowMs : qMax(nowMs, m_pieces.constLast().dueMs);
    m_pieces.append({due, noise});
}

/// From one byte of the noise to the next: anything up to twice what it is on average.
qint64 FaultyLine::noiseGapUs()
{
    const double twiceAverage = qBound(1.0, 2e6 / m_faults.noise, 4e9);
    return 1 + m_noise.below(quint32(twiceAverage));
}

void FaultyLine::tell(const QString &what, const QByteArray &bytes)
{
    m_told.append({what, bytes});
}

} // namespace boxsim
