#pragma once

#include "boxsim/car/carstate.h"
#include "boxsim/car/gaugefaces.h"
#include "boxsim/fields/fields.h"
#include "boxsim/line/faults.h"

namespace boxsim {

/// Everything that can be set by name: what the car reports, what it measures, what is wrong.
struct BenchState {
    CarState car;
    /// What the gauges show when they follow the measurements: see apply().
    Measurements measured;
    GaugeFaces faces {};
    Faults faults;
    bool ready = true; ///< what the box says of itself when it is asked to connect
};

/// Sets one item.
///
/// A measurement or a face (`measured.*`) changes those items of the gauges that gaugesShowing() gives
/// another value for afterwards; items that were set directly stay as long as they are not among these.
void apply(BenchState &state, const Assignment &assignment);

/// What the field holds at present, in the form that Assignment has.
QVariant valueOf(const BenchState &state, int field, int entry);

} // namespace boxsim
