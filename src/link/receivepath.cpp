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

/// The first DLE in [from, end), or `end`.
const quint8 *findEscape(const quint8 *from, const quint8 *end)
{
    // Escapes come in runs, and a call for each would cost more than a look.
    if (from != end && *from == frame::kDle)
        return from;
    const void *const found = std::memchr(from, frame::kDle, size_t(end - from));
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
    for (const quint8 *at = findEscape(bytes + start, stop); at != stop; at = findEscape(at + 1, stop)) {
        if (at[1] == frame::kDle)
            return int(at - bytes);
    }
    return -1;
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
    for (const quint8 *at = findEscape(bytes, end); end - at > 1; at = findEscape(at + 1, end)) {
        const Markers markers = markersFor(at[1]);
        if (markers.nack || markers.ack || markers.stx)
            return {int(at - bytes) + kMarkSize, markers};
    }
    return {};
}

End findEnd(const QByteArray &buffer, int start)
{
    if (start < 0 || start > buffer.size())
        return {};
    const quint8 *const bytes = bytesOf(buffer);
    const quint8 *const end = bytes + buffer.size();
    for (const quint8 *at = findEscape(bytes + start, end); at != end; at = findEscape(at + 1, end)) {
        if (end - at == 1)
            return {-1, true};
        if (at[1] == frame::kEtx)
            return {int(at - bytes) + kMarkSize, false};
    }
    return {};
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

QByteArray takePayload(QByteArray &rest, quint8 checkByte)
{
    const int tail = rest.size() - 3;
    const bool closed = tail >= 0 && byteAt(rest, tail) == checkByte && byteAt(rest, tail + 1) == frame::kDle
        && byteAt(rest, tail + 2) == frame::kEtx;
    QByteArray payload = closed ? rest.left(tail) : rest;
    rest = closed ? rest.mid(tail) : QByteArray();
    return payload;
}

} // namespace canbus::receive
