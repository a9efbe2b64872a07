#pragma once

#include "recording/recording.h"

#include "plaintexts.h"

#include <algorithm>
#include <limits>
#include <vector>

/// A reader of recordings, made from what the pcapng format is: what the library's own is compared with.
namespace fuzz {

class PlainPcapng {
public:
    explicit PlainPcapng(const QByteArray &file)
        : isWhole(file.startsWith("\n\r\r\n"))
    {
        for (QByteArray rest = part(file, 0, file.size()); isWhole && !rest.isEmpty();)
            isWhole = takeBlock(rest);
    }

    bool isWhole;
    canbus::recording::Recording read; ///< what stands before the first fault

private:
    struct Interface {
        quint64 most = 0;
        int exponent = 6;
        bool isBinary = false;
        qint64 offset = 0;
    };

    /// Not a copy.
    static QByteArray part(const QByteArray &bytes, int from, int size)
    {
        return QByteArray::fromRawData(bytes.constData() + from, size);
    }

    /// 0 where the bytes are not all there.
    quint64 number(const QByteArray &bytes, int at, int size) const
    {
        quint64 value = 0;
        for (int i = 0; at + size <= bytes.size() && i < size; ++i)
            value = value << 8 | quint8(bytes.at(m_isBig ? at + i : at + size - 1 - i));
        return value;
    }

    bool takeBlock(QByteArray &rest)
    {
        const bool isSection = rest.startsWith("\n\r\r\n");
        if (isSection)
            m_isBig = rest.mid(8, 4) == "\x1a\x2b\x3c\x4d";
        const quint64 type = number(rest, 0, 4);
        const quint64 size = number(rest, 4, 4);
        if (isSection && number(rest, 8, 4) != 0x1A2B3C4D)
            return false;
        if (size < 12 || size % 4 != 0 || size > 0x1000000 || size > quint64(rest.size())
            || number(rest, int(size) - 4, 4) != size)
            return false;
        const QByteArray body = part(rest, 8, int(size) - 12);
        rest = part(rest, int(size), rest.size() - int(size));
        return isSection ? body.size() >= 16 && takeSection(body) : takeBody(type, body);
    }

    bool takeBody(quint64 type, const QByteArray &body)
    {
        switch (type) {
        case 1:
            return body.size() >= 8 && takeInterface(body);
        case 2:
            return body.size() >= 20 && takePacket(body, number(body, 0, 2));
        case 3:
            return body.size() >= 4 && takeSimplePacket(body);
        case 6:
            return body.size() >= 20 && takePacket(body, number(body, 0, 4));
        default:
            return true;
        }
    }

    bool takeSection(const QByteArray &body)
    {
        QByteArray comment;
        m_interfaces.clear();
        if (number(body, 4, 2) != 1 || !findOption(body, 16, 1, &comment))
            return false;
        if (read.comment.isEmpty())
            read.comment = plaintexts::decoded(plaintexts::upToZero(comment));
        return true;
    }

    bool takeInterface(const QByteArray &body)
    {
        QByteArray unit;
        QByteArray offset;
        if (number(body, 0, 2) != 147 || !findOption(body, 8, 9, &unit) || !findOption(body, 8, 14, &offset))
            return false;
        const auto resolution = int(unit.isEmpty() ? 6 : number(unit, 0, 1));
        m_interfaces.push_back(
            {number(body, 4, 4), resolution % 128, resolution >= 128, qint64(number(offset, 0, 8))});
        return true;
    }

    bool takePacket(const QByteArray &body, quint64 interface)
    {
        using canbus::recording::Direction;
        const quint64 size = number(body, 12, 4);
        QByteArray flags;
        if (interface >= m_interfaces.size() || size > quint64(body.size() - 20)
            || !findOption(body, 20 + int((size + 3) / 4 * 4), 2, &flags))
            return false;
        m_timeUs = time(number(body, 4, 4) << 32 | number(body, 8, 4), m_interfaces[std::size_t(interface)]);
        const bool isSent = number(flags, 0, 4) % 4 == 2;
        read.blocks.append(
            {isSent ? Direction::Sent : Direction::Received, m_timeUs, body.mid(20, int(size))});
        return true;
    }

    bool takeSimplePacket(const QByteArray &body)
    {
        const quint64 most = m_interfaces.empty() ? 0 : m_interfaces.front().most;
        const quint64 size = most == 0 ? number(body, 0, 4) : std::min(number(body, 0, 4), most);
        if (m_interfaces.empty() || size > quint64(body.size() - 4))
            return false;
        read.blocks.append({canbus::recording::Direction::Received, m_timeUs, body.mid(4, int(size))});
        return true;
    }

    /// Takes the value of the first option of this kind. @return whether each option ends within the body
    bool findOption(const QByteArray &body, int at, quint64 kind, QByteArray *value) const
    {
        while (at + 4 <= body.size() && number(body, at, 2) != 0) {
            const auto size = int(number(body, at + 2, 2));
            if (at + 4 + size > body.size())
                return false;
            if (value->isNull() && number(body, at, 2) == kind)
                *value = part(body, at + 4, size);
            at += 4 + (size + 3) / 4 * 4;
        }
        return true;
    }

    static constexpr qint64 kUsPerS = 1000000;
    static constexpr qint64 kLatestUs = std::numeric_limits<qint64>::max() / 4;

    /// @return count * factor, or the latest time where it is earlier
    static qint64 product(quint64 count, qint64 factor)
    {
        return count > quint64(kLatestUs / factor) ? kLatestUs : qint64(count) * factor;
    }

    static qint64 ofTenths(quint64 units, int exponent)
    {
        for (; exponent > 6 && units != 0; --exponent)
            units /= 10;
        qint64 factor = 1;
        for (; exponent < 6; ++exponent)
            factor *= 10;
        return product(units, factor);
    }

    /// What is finer than 2^-32 s is cut off before the time becomes microseconds.
    static qint64 ofHalves(quint64 units, int exponent)
    {
        for (; exponent > 32; --exponent)
            units /= 2;
        const quint64 parts = units & ((quint64(1) << exponent) - 1);
        const auto rest = qint64(parts * quint64(kUsPerS) >> exponent);
        return std::min(product(units >> exponent, kUsPerS) + rest, kLatestUs);
    }

    static qint64 time(quint64 units, const Interface &of)
    {
        const qint64 us = of.isBinary ? ofHalves(units, of.exponent) : ofTenths(units, of.exponent);
        const qint64 seconds = std::clamp<qint64>(of.offset, -kLatestUs / kUsPerS, kLatestUs / kUsPerS);
        return std::clamp<qint64>(us + seconds * kUsPerS, 0, kLatestUs);
    }

    bool m_isBig = false;
    std::vector<Interface> m_interfaces; // of the current section
    qint64 m_timeUs = 0;                 // of the last packet
};

} // namespace fuzz
