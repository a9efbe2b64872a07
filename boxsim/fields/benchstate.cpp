#include "benchstate.h"

#include "fieldrows.h"

namespace boxsim {

void apply(BenchState &state, const Assignment &assignment)
{
    if (!allFields().at(assignment.field).name.startsWith(QLatin1String("measured."))) {
        fieldRows().at(assignment.field).write(state, assignment.entry, assignment.value);
        return;
    }
    const GaugesState before = gaugesShowing(state.measured, state.faces);
    fieldRows().at(assignment.field).write(state, assignment.entry, assignment.value);
    applyChanges(state.car.gauges, before, gaugesShowing(state.measured, state.faces));
}

QVariant valueOf(const BenchState &state, int field, int entry)
{
    return fieldRows().at(field).read(state, entry);
}

} // namespace boxsim
