#pragma once

#include "boxsim/fields/fields.h"
#include "boxsim/line/faults.h"
#include "chance.h"

#include <QtCore/QVector>

/// Which kinds of faults a run has.
struct FaultKinds {
    bool answers = false;  ///< of the box: dropped, negative, with wrong ids, silence, not ready
    bool bytes = false;    ///< on the line: lost, flipped, doubled, put in, wrong check bytes
    bool cuts = false;     ///< how blocks are cut, merged and delayed
    bool noise = false;    ///< bytes between the frames
    bool garbage = false;  ///< whole blocks of it, and frames that nobody has asked for
    bool restarts = false; ///< of the box, and of the line

    bool damages() const { return bytes || noise || garbage; }
};

/// Draws what is wrong for a while: each fault of these kinds with its chance, as strong as it may be.
boxsim::Faults drawnFaults(const FaultKinds &kinds, Chance &chance);

/// The same as settings of the bench.
QVector<boxsim::Assignment> faultAssignments(const boxsim::Faults &faults);

/// A block that is no frame of the box's: bytes of the protocol in any order, answers for any id, frames of
/// any content, whole or not.
QByteArray drawnGarbage(Chance &chance);
