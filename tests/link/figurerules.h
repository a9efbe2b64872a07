#pragma once

#include "findings.h"
#include "wirecounts.h"

#include "linkhealth.h"

/// Compares the library's own figures of its link with what a simulation has counted.
void checkFigures(const canbus::LinkFigures &figures, const WireCounts &counts, Findings &findings);
