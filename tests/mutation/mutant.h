#pragma once

#include <cstdlib>

// Included before everything else in the build of the mutants: the sources that mutate.py writes ask here
// which change they are to show.

/// The number in CANBUS_MUTANT, read once; 0, which no mutant has, without it.
inline const int kCanbusMutant = std::getenv("CANBUS_MUTANT") ? std::atoi(std::getenv("CANBUS_MUTANT")) : 0;

/// Whether this process runs with the change of that number.
inline bool canbusMutant(int number)
{
    return number == kCanbusMutant;
}
