#pragma once

#include <QtCore/QtGlobal>

#include <random>

namespace boxsim {

/// The seed of a bench that nobody gave one.
constexpr quint32 kDefaultSeed = 1;

/// Chance from a seed: the same draws for the same seed, on every machine.
class Random {
public:
    /// What the draws are for. The streams of one seed have nothing to do with each other, so that a fault of
    /// the answers leaves those of the line as they are.
    enum class Stream : quint32 { Answers = 1, Frames = 2, Bytes = 3, Noise = 4 };

    Random(quint32 seed, Stream stream);

    /// Draws whether something of this probability happens. Without a draw when it is 0 or less.
    bool happens(double share);

    /// Draws a whole number from 0 to `below` - 1.
    quint32 below(quint32 below);

    /// Draws a byte.
    quint8 byte() { return quint8(below(256)); }

private:
    std::mt19937 m_engine;
};

} // namespace boxsim
