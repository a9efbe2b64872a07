#pragma once

#include "boxsim/link/wirereader.h"

#include <QtCore/QString>
#include <QtCore/QVariant>
#include <QtCore/QVector>

namespace boxsim {

/// One argument of a command: a flag (bool), a byte (int), or bytes as hexadecimal text (QString).
struct Argument {
    QString name;
    QVariant value;
};

/// What the box does with a command, beyond reporting it.
enum class Action {
    None,
    ConnectRequest,
    ConnectionCheck,
    ClimateRequest,
    GaugesRequest,
    VehicleRequest,
    ParkingRequest,
    ClimateButton,
    GaugesButton,
    VehicleButton,
    ParkingButton,
    MenuPress,
};

/// A data frame of the head unit, told by name.
struct DecodedCommand {
    /// OBJECT.OPERATION as the head unit's side calls it, for example "climate.acBtn"; "unknown" for a frame
    /// that no operation sends, with its fields as arguments.
    QString name;
    QVector<Argument> arguments;
    Action action = Action::None;
};

/// Names the command that a data frame carries.
///
/// The four groups send the same bytes for their settings, apart from the id: its owner gives the name, as in
/// "climate.settings". "settings" stands without an object when the id belongs to no frame of a group.
/// @param frame  a frame of Kind::Data
DecodedCommand decodeCommand(const WireFrame &frame);

/// An argument that a command can have.
struct ArgumentForm {
    enum class Kind {
        Flag, ///< bool
        Byte, ///< int
        Hex,  ///< QString, bytes as hexadecimal text
    };

    QString name;
    Kind kind = Kind::Byte;
    int least = 0; ///< of a flag or a byte, as a number
    int most = 255;
};

/// A command that decodeCommand() can name.
struct CommandForm {
    QString name;
    QVector<ArgumentForm> arguments;
};

/// Everything that decodeCommand() can name, with all arguments that it gives.
const QVector<CommandForm> &commandForms();

/// The command as one line: `climate.acBtn press=true value=0`.
QString toText(const DecodedCommand &command);

} // namespace boxsim
