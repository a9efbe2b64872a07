#include "random.h"

namespace boxsim {

namespace {

/// Of values of std::mt19937, which the distributions of the standard library would map differently on other
/// machines.
constexpr double kValues = 4294967296.0;

std::mt19937 engineFor(quint32 seed, quint32 stream)
{
    std::seed_seq sequence {seed, stream};
    return std::mt19937(sequence);
}

} // namespace

Random::Random(quint32 seed, Stream stream)
    : m_engine(engineFor(seed, quint32(stream)))
{
}

bool Random::happens(double share)
{
    return share > 0 && double(m_engine()) < share * kValues;
}

quint32 Random::below(quint32 below)
{
    return quint32(quint64(quint32(m_engine())) * below >> 32U);
}

} // namespace boxsim
