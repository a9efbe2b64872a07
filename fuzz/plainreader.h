#pragma once

#include "frameformat.h"
#include "receivepath.h"

#include <QtCore/QByteArray>

#include <algorithm>
#include <cstring>
#include <vector>

/// The receiving side as docs/protocol.md tells it, in the plainest way: what the library's own is compared
/// with.
namespace fuzz {

using Buffer = std::vector<quint8>;

inline QByteArray toBytes(const Buffer &buffer)
{
    return QByteArray(reinterpret_cast<const char *>(buffer.data()), int(buffer.size()));
}

/// As toBytes(buffer) == bytes, without the copy.
inline bool isSame(const Buffer &buffer, const QByteArray &bytes)
{
    return int(buffer.size()) == bytes.size()
        && (buffer.empty() || std::memcmp(buffer.data(), bytes.constData(), buffer.size()) == 0);
}

inline void append(Buffer &buffer, const QByteArray &bytes)
{
    const auto *const first = reinterpret_cast<const quint8 *>(bytes.constData());
    buffer.insert(buffer.end(), first, first + bytes.size());
}

inline Buffer toBuffer(const QByteArray &bytes)
{
    Buffer buffer;
    append(buffer, bytes);
    return buffer;
}

/// The index of the first escape that has a byte behind it; -1 where there is none.
inline int plainEscape(const Buffer &buffer, int from)
{
    if (from + 1 >= int(buffer.size()))
        return -1;
    const quint8 *const begin = buffer.data();
    const void *const found = std::memchr(begin + from, 0x9F, buffer.size() - 1 - std::size_t(from));
    return found == nullptr ? -1 : int(static_cast<const quint8 *>(found) - begin);
}

/// The index behind the first opening mark, and the byte that made it one; -1 and 0 where there is none.
struct PlainStart {
    int index = -1;
    quint8 mark = 0;
};

inline PlainStart plainStart(const Buffer &buffer)
{
    for (int i = plainEscape(buffer, 0); i != -1; i = plainEscape(buffer, i + 1)) {
        const quint8 next = buffer[std::size_t(i) + 1];
        if (next == 0x02 || next == 0x06 || next == 0x15)
            return {i + 2, next};
    }
    return {};
}

inline int plainEnd(const Buffer &buffer, int start)
{
    if (start < 0)
        return -1;
    for (int i = plainEscape(buffer, start); i != -1; i = plainEscape(buffer, i + 1)) {
        if (buffer[std::size_t(i) + 1] == 0x03)
            return i + 2;
    }
    return -1;
}

inline void plainUnescape(Buffer &buffer, int start, int end)
{
    for (int i = start; i < end; ++i) {
        const auto at = std::size_t(i);
        if (at + 1 < buffer.size() && buffer[at] == 0x9F && buffer[at + 1] == 0x9F)
            buffer.erase(buffer.begin() + i);
    }
}

inline quint8 plainXor(const Buffer &buffer, int from, int to)
{
    quint8 value = 0;
    for (int i = from; i < to; ++i)
        value = quint8(value ^ buffer[std::size_t(i)]);
    return value;
}

/// One parsing pass, and the frame that it took.
struct PlainPass {
    canbus::receive::Pass pass;
    bool awaitsEnd = false; ///< a data frame waits for the byte behind its last escape: a NACK is due
    bool checked = false;   ///< a frame has gone, whether its check held or not
    quint8 mark = 0;        ///< of the frame that was taken
    Buffer frame;           ///< from behind its opening mark to the end of its closing one
    quint8 check = 0;
};

inline PlainPass plainPass(Buffer &buffer)
{
    using canbus::receive::Pass;
    PlainPass result;
    if (buffer.size() > 2048) {
        result.pass.discarded = int(buffer.size());
        buffer.clear();
        return result;
    }
    PlainStart start = plainStart(buffer);
    int end = plainEnd(buffer, start.index);
    if (end == -1) {
        // The mark itself is no escape that waits: only what comes behind it counts.
        const bool isLast = start.index >= 0 && int(buffer.size()) > start.index && buffer.back() == 0x9F;
        result.awaitsEnd = isLast && start.mark == 0x02;
        return result;
    }
    plainUnescape(buffer, start.index, end);
    start = plainStart(buffer);
    end = plainEnd(buffer, start.index);
    result.checked = true;
    result.pass.skipped = start.index - 2;
    result.pass.end = Pass::BadCheck;
    result.check = plainXor(buffer, start.index, end - 3);
    if (end - 3 >= 0 && buffer[std::size_t(end) - 3] == result.check) {
        result.pass.end = Pass::Taken;
        result.mark = start.mark;
        result.frame.assign(buffer.begin() + start.index, buffer.begin() + end);
    }
    buffer.erase(buffer.begin(), buffer.begin() + end);
    return result;
}

/// A data frame taken apart. What a short one lacks is empty.
struct PlainFrame {
    QByteArray id;
    QByteArray tp;
    QByteArray mod;
    QByteArray data;
};

inline PlainFrame plainFrame(const Buffer &bytes, quint8 check)
{
    PlainFrame frame;
    auto rest = bytes.begin();
    for (QByteArray *field : {&frame.id, &frame.tp, &frame.mod}) {
        if (rest != bytes.end())
            field->append(char(*rest++));
    }
    const quint8 tail[] = {check, 0x9F, 0x03};
    while (rest != bytes.end() && !std::equal(rest, bytes.end(), std::begin(tail), std::end(tail)))
        frame.data.append(char(*rest++));
    return frame;
}

/// A data frame in which no byte is 9F, so that none is doubled: nothing before it can change it.
inline QByteArray cleanFrame()
{
    static const QByteArray frame("\x9f\x02\x44\x02\x00\x1f\x59\x9f\x03", 9);
    return frame;
}

} // namespace fuzz
