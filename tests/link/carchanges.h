#pragma once

#include "boxsim/fields/benchstate.h"
#include "chance.h"

#include <QtCore/QVector>

/// Random changes of what the car reports, within what the wire can carry and the head unit can tell apart.
class CarChanges {
public:
    CarChanges();

    /// Some items. @param state  what they change
    QVector<boxsim::Assignment> some(const boxsim::BenchState &state, Chance &chance) const;

    /// Every item.
    QVector<boxsim::Assignment> all(const boxsim::BenchState &state, Chance &chance) const;

    /// Whether the head unit can read every frame that reports this state: it takes a 9F before a 03 for the
    /// end of a frame.
    static bool canBeSent(const boxsim::CarState &car);

private:
    QVector<boxsim::Assignment> drawn(int field, Chance &chance) const;
    template <class Draw>
    QVector<boxsim::Assignment> sendable(const boxsim::BenchState &state, Draw &&draw) const;

    QVector<int> m_fields; ///< rows of boxsim::allFields()
};
