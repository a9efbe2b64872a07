#pragma once

#include "frameformat.h"

#include <array>

namespace bench {

/// The least that reading frames takes: one look at each byte, in the order in which they came, and a plain
/// array for what is found. It has none of the link's oddities, and nobody could call a step of it.
class BareReader {
public:
    void take(const QByteArray &bytes)
    {
        for (const char byte : bytes)
            take(quint8(byte));
    }

    int frames() const { return m_frames; } ///< whose check held

    // Of the last frame.
    quint8 id() const { return m_bytes[0]; }
    quint8 tp() const { return m_bytes[1]; }
    quint8 mod() const { return m_bytes[2]; }
    const quint8 *payload() const { return m_bytes.data() + 3; }
    int payloadSize() const { return m_size - 4; }

private:
    enum class State {
        Outside,
        OutsideAfterEscape,
        Inside,
        InsideAfterEscape,
    };

    void take(quint8 byte)
    {
        using canbus::frame::kDle;
        switch (m_state) {
        case State::Outside:
            if (byte == kDle)
                m_state = State::OutsideAfterEscape;
            break;
        case State::OutsideAfterEscape:
            if (byte == canbus::frame::kStx)
                begin();
            else if (byte != kDle)
                m_state = State::Outside;
            break;
        case State::Inside:
            if (byte == kDle)
                m_state = State::InsideAfterEscape;
            else
                store(byte);
            break;
        case State::InsideAfterEscape:
            if (byte == kDle)
                store(byte);
            m_state = byte == kDle ? State::Inside : State::Outside;
            if (byte == canbus::frame::kEtx)
                end();
            break;
        }
    }

    void begin()
    {
        m_state = State::Inside;
        m_size = 0;
        m_check = 0;
    }

    void store(quint8 byte)
    {
        if (m_size == int(m_bytes.size()))
            return;
        m_bytes[size_t(m_size++)] = byte;
        m_check ^= byte;
    }

    // The XOR over everything, its check byte included, is 0.
    void end() { m_frames += m_check == 0 && m_size >= 4; }

    State m_state = State::Outside;
    int m_size = 0;
    int m_frames = 0;
    quint8 m_check = 0;
    std::array<quint8, 2048> m_bytes {};
};

} // namespace bench
