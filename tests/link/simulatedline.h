#pragma once

#include <QtCore/QByteArray>

#include <random>

/// What a simulated line does to the bytes on it, each as a chance for every byte.
struct LineFaults {
    double lost = 0;
    double flipped = 0; ///< one random bit
    double doubled = 0;
    double inserted = 0; ///< a random byte before it
};

/// One direction of a serial line at 57600 baud, in virtual time. What it does to the bytes is decided by a
/// seed alone.
class SimulatedLine {
public:
    static constexpr int kTickMs = 10;
    static constexpr int kBytesATick = 57; ///< 173.6 microseconds a byte

    explicit SimulatedLine(quint32 seed)
        : m_random(seed)
    {
    }

    void setFaults(const LineFaults &faults) { m_faults = faults; }

    /// A silent line takes bytes and delivers none.
    void setSilent(bool silent) { m_silent = silent; }

    void write(const QByteArray &block)
    {
        for (const char byte : block)
            put(byte);
    }

    /// What arrives in one tick.
    QByteArray deliver()
    {
        const QByteArray arrived = m_onTheWay.left(kBytesATick);
        m_onTheWay.remove(0, kBytesATick);
        return m_silent ? QByteArray() : arrived;
    }

private:
    bool happens(double chance) { return chance > 0 && std::bernoulli_distribution(chance)(m_random); }
    int random(int below) { return std::uniform_int_distribution<int>(0, below - 1)(m_random); }

    void put(char byte)
    {
        if (happens(m_faults.inserted))
            m_onTheWay.append(char(random(256)));
        if (happens(m_faults.lost))
            return;
        if (happens(m_faults.flipped))
            byte = char(quint8(byte) ^ quint8(1U << random(8)));
        m_onTheWay.append(byte);
        if (happens(m_faults.doubled))
            m_onTheWay.append(byte);
    }

    std::mt19937 m_random;
    LineFaults m_faults;
    bool m_silent = false;
    QByteArray m_onTheWay;
};
