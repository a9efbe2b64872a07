#pragma once

#include "recording/pcapng.h"

#include <QtCore/QByteArray>
#include <QtCore/QtEndian>

#include <algorithm>

namespace canbus::recording {

/// Some bytes with the byte order that their numbers are in. What is read past the end reads as 0.
class Bytes {
public:
    Bytes(const char *data, qint64 size, bool isBigEndian)
        : m_data(data)
        , m_size(size)
        , m_isBigEndian(isBigEndian)
    {
    }

    qint64 size() const { return m_size; }

    template <class Number>
    Number number(qint64 at) const
    {
        if (at < 0 || at + qint64(sizeof(Number)) > m_size)
            return 0;
        return m_isBigEndian ? qFromBigEndian<Number>(m_data + at) : qFromLittleEndian<Number>(m_data + at);
    }

    /// The part from `at` on, as far as it is there.
    Bytes part(qint64 at, qint64 size) const
    {
        const qint64 from = std::clamp<qint64>(at, 0, m_size);
        return {m_data + from, std::clamp<qint64>(size, 0, m_size - from), m_isBigEndian};
    }

    Bytes from(qint64 at) const { return part(at, m_size); }

    QByteArray copy() const { return {m_data, int(m_size)}; }

private:
    const char *m_data;
    qint64 m_size;
    bool m_isBigEndian;
};

/// The options of a block; the first of each code counts.
class Options {
public:
    explicit Options(const Bytes &bytes)
        : m_bytes(bytes)
    {
        for (qint64 at = 0; at + 4 <= bytes.size();) {
            const auto length = bytes.number<quint16>(at + 2);
            if (bytes.number<quint16>(at) == pcapng::kEndOfOptions)
                return;
            m_fit = m_fit && at + 4 + length <= bytes.size();
            at += 4 + pcapng::padded(length);
        }
    }

    /// Whether each option ends within the block.
    bool fit() const { return m_fit; }

    /// Empty where there is no such option.
    Bytes value(quint16 code) const
    {
        for (qint64 at = 0; at + 4 <= m_bytes.size();) {
            const auto found = m_bytes.number<quint16>(at);
            const auto length = m_bytes.number<quint16>(at + 2);
            if (found == pcapng::kEndOfOptions)
                break;
            if (found == code)
                return m_bytes.part(at + 4, length);
            at += 4 + pcapng::padded(length);
        }
        return m_bytes.part(0, 0);
    }

private:
    Bytes m_bytes;
    bool m_fit = true;
};

} // namespace canbus::recording
