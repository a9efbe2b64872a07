#include "receivepath.h"

#include "frameformat.h"
#include "support/bytes.h"

#include <algorithm>
#include <cstring>

namespace canbus::receive {

namespace {

const quint8 *bytesOf(const QByteArray &buffer)
{
    return reinterpret_cast<const quint8 *>(buffer.constData());
}

/// The first `byte` in [from, end), or `end`.
const quint8 *find(quint8 byte, const quint8 *from, const quint8 *end)
{
    // Escapes come in runs, and a call for each would cost more than a look.
    if (from != end && *from == byte)
        return from;
    const void *const found = std::memchr(from, byte, size_t(end - from));
    return found ? static_cast<const quint8 *>(found) : end;
}

/// The index of the first DLE DLE whose first byte lies in [start, end), or -1.
int findPair(const QByteArray &buffer, int start, int end)
{
    const int last = std::min(end, buffer.size() - 1);
    if (start < 0 || start >= last)
        return -1;
    const quint8 *const bytes = bytesOf(buffer);
    const quint8 *const stop = bytes + last;
    for (const quint8 *at = find(frame::kDle, bytes + start, stop); at != stop;
         at = find(frame::kDle, at + 1, stop)) {
        if (at[1] == frame::kDle)
            return int(at - bytes);
    }
    return -1;
}

bool opensFrame(quint8 mark)
{
    return mark == frame::kNack || mark == frame::kAck || mark == frame::kStx;
}

Markers markersFor(quint8 mark)
{
    Markers markers;
    markers.nack = mark == frame::kNack;
    markers.ack = mark == frame::kAck;
    markers.stx = mark == frame::kStx;
    return markers;
}

} // namespace

Start findStart(const QByteArray &buffer)
{
    const quint8 *const bytes = bytesOf(buffer);
    const quint8 *const end = bytes + buffer.size();
    for (const quint8 *at = find(frame::kDle, bytes, end); end - at > 1;
         at = find(frame::kDle, at + 1, end)) {
        if (opensFrame(at[1]))
            return {int(at - bytes) + kMarkSize, markersFor(at[1])};
    }
    return {};
}

End findEnd(const QByteArray &buffer, int start)
{
    if (start < 0 || start >= buffer.size())
        return {};
    const quint8 *const bytes = bytesOf(buffer);
    const quint8 *const end = bytes + buffer.size();
    // By the second byte of the mark: a payload has fewer of them than doubled escapes.
    for (const quint8 *at = find(frame::kEtx, bytes + start + 1, end); at != end;
         at = find(frame::kEtx, at + 1, end)) {
        if (at[-1] == frame::kDle)
            return {int(at - bytes) + 1, false};
    }
    return {-1, end[-1] == frame::kDle};
}

void unescape(QByteArray &buffer, int start, int end)
{
    const int pair = findPair(buffer, start, end);
    if (pair < 0)
        return;
    char *bytes = buffer.data();
    const int size = buffer.size();
    int from = pair;
    int to = pair;
    for (; to < end && from < size; ++to, ++from) {
        const bool isPair =
            quint8(bytes[from]) == frame::kDle && from + 1 < size && quint8(bytes[from + 1]) == frame::kDle;
        if (isPair)
            ++from;
        bytes[to] = bytes[from];
    }
    std::memmove(bytes + to, bytes + from, size_t(size - from));
    buffer.truncate(to + size - from);
}

Check checkFrame(const QByteArray &buffer, int start, int end)
{
    Check check;
    if (buffer.size() < 4 || start < 0 || end < 3 || end > buffer.size())
        return check;
    const int checkIndex = end - 3;
    for (int i = start; i < checkIndex; ++i)
        check.computed ^= quint8(buffer.at(i));
    check.holds = check.computed == quint8(buffer.at(checkIndex));
    return check;
}

int payloadSize(const QByteArray &bytes, int from, quint8 checkByte)
{
    const int tail = bytes.size() - kTailSize;
    const bool isClosed = tail >= from && byteAt(bytes, tail) == checkByte
        && byteAt(bytes, tail + 1) == frame::kDle && byteAt(bytes, tail + 2) == frame::kEtx;
    return (isClosed ? tail : bytes.size()) - from;
}

void startAnew(QByteArray &buffer)
{
    buffer.clear();
    buffer.reserve(kMaxBufferedBytes);
}

} // namespace canbus::receive
