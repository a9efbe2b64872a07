#pragma once

#include "boxsim/bench/instruction.h"
#include "boxsim/fields/benchstate.h"

#include <QtCore/QStringList>

#include <optional>

namespace boxsim {

/// What a line of standard input came to. A line that is empty or begins with # comes to nothing.
struct Steered {
    std::optional<Instruction> instruction;
    QStringList answer; ///< lines for whoever typed it
    QString error;      ///< one line that says what would be right
};

/// Reads a line of standard input:
///
/// | line | what it does |
/// |---|---|
/// | `NAME=VALUE` | sets a field; several of them in a line are set at once |
/// | `NAME` | sets a flag; of every other field it shows the value |
/// | `NAME?` | shows the value, as it can be typed |
/// | `send ID TP MOD HEX...` | sends a data frame |
/// | `bytes HEX...` | puts bytes on the line as they are |
/// | `restart` | switches the box off and on |
/// | `hangup [MS]` | takes the line away, for a second or so many milliseconds |
/// | `note TEXT` | puts a text among the reports |
/// | `quit` | ends the run |
/// | `help [BEGINNING]` | lists the commands and objects, or the fields whose names begin so |
///
/// A value goes on to the next blank that `NAME=` follows, or to the end of the line: texts may have blanks.
/// Blanks around a value do not count.
/// @param state  what the answers tell of
Steered steer(const QString &line, const BenchState &state);

} // namespace boxsim
