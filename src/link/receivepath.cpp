#include "receivepath.h"

#include "frameformat.h"
#include "support/bytes.h"

#include <cstring>

namespace canbus::receive {

namespace {

/// The index of the first DLE at or behind `from`, or -1.
int findEscape(const QByteArray &buffer, int from)
{
    return buffer.indexOf(char(frame::kDle), from);
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
    for (int i = findEscape(buffer, 0); i != -1 && i + 1 < buffer.size(); i = findEscape(buffer, i + 1)) {
        const Markers markers = markersFor(byteAt(buffer, i + 1));
        if (markers.nack || markers.ack || markers.stx)
            return {i + 2, markers};
    }
    return {};
}

End findEnd(const QByteArray &buffer, int start)
{
    if (start < 0)
        return {};
    for (int i = findEscape(buffer, start); i != -1; i = findEscape(buffer, i + 1)) {
        if (i + 1 == buffer.size())
            return {-1, true};
        if (byteAt(buffer, i + 1) == frame::kEtx)
            return {i + 2, false};
    }
    return {};
}

void unescape(QByteArray &buffer, int start, int end)
{
    if (start < 0 || start >= end || findEscape(buffer, start) == -1)
        return;
    char *bytes = buffer.data();
    const int size = buffer.size();
    int from = start;
    int to = start;
    for (; to < end && from < size; ++to, ++from) {
        const bool pair =
            quint8(bytes[from]) == frame::kDle && from + 1 < size && quint8(bytes[from + 1]) == frame::kDle;
        if (pair)
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
