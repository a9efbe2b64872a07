#pragma once

#include "boxsim/fields/benchstate.h"
#include "boxsim/scenario/builtindrive.h"
#include "boxsim/scenario/scenarioplayer.h"

#include <vector>

/// What the built-in drive makes a car report.
namespace drivenround {

constexpr qint64 kRoundMs = 60000;

/// The drive changes something at whole multiples of this alone.
constexpr qint64 kStepMs = 250;

/// A car that the built-in drive leads, in virtual time.
class DrivenCar {
public:
    /// @param turned  1 for each gauge that the head unit turns to its other face at the very beginning
    explicit DrivenCar(const boxsim::GaugeFaces &turned = {})
        : m_player(boxsim::builtinDrive())
    {
        follow(0);
        QVariantList faces;
        for (const quint8 face : turned)
            faces.append(double(face));
        boxsim::Assignment assignment;
        QString error;
        if (!boxsim::assign(QStringLiteral("measured.face"), faces, &assignment, &error))
            qFatal("%s", qPrintable(error));
        boxsim::apply(m_state, assignment);
    }

    /// The car at a moment, which is not before that of the last call.
    const boxsim::CarState &at(qint64 nowMs)
    {
        follow(nowMs);
        return m_state.car;
    }

    /// When the drive changes something next.
    qint64 dueMs() const { return m_player.dueMs(); }

private:
    void follow(qint64 nowMs)
    {
        for (const boxsim::Instruction &instruction : m_player.advance(nowMs)) {
            for (const boxsim::Assignment &assignment : instruction.assignments)
                boxsim::apply(m_state, assignment);
        }
    }

    boxsim::ScenarioPlayer m_player;
    boxsim::BenchState m_state;
};

/// The car at a moment of the first four rounds.
inline const boxsim::CarState &driveAt(qint64 nowMs)
{
    static const std::vector<boxsim::CarState> states = [] {
        DrivenCar car;
        std::vector<boxsim::CarState> all;
        for (qint64 ms = 0; ms < 4 * kRoundMs; ms += kStepMs)
            all.push_back(car.at(ms));
        return all;
    }();
    return states.at(std::size_t(nowMs / kStepMs));
}

} // namespace drivenround
