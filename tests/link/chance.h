#pragma once

#include <QtCore/QtGlobal>

#include <cmath>
#include <random>

/// Everything that a simulated run leaves to chance, from its seed: the same draws on every machine.
class Chance {
public:
    explicit Chance(quint32 seed)
        : m_random(seed)
    {
    }

    /// A whole number from 0 to `limit` - 1.
    int below(int limit) { return int(quint64(quint32(m_random())) * quint64(limit) >> 32U); }

    /// A whole number from `least` to `most`.
    int between(int least, int most) { return least + below(most - least + 1); }

    bool happens(double share) { return share > 0 && fraction() < share; }

    /// A number from 0 to 1, and never 1.
    double fraction() { return double(quint32(m_random())) / 4294967296.0; }

    /// Small numbers as often as large ones: each power of ten between the two is as likely.
    double share(double least, double most) { return least * std::pow(most / least, fraction()); }

    /// Milliseconds to the next of events that come so often on average.
    int gapMs(double everyMs) { return 1 + int(-std::log(1 - fraction()) * everyMs); }

    quint8 byte() { return quint8(below(256)); }

    quint32 seed() { return quint32(m_random()); }

private:
    std::mt19937 m_random;
};
