#pragma once

#include <QtCore/QString>
#include <QtCore/QStringList>
#include <QtCore/QVariant>
#include <QtCore/QVector>

namespace boxsim {

/// The kinds of values that can be set by name.
enum class FieldKind {
    Flag,   ///< bool; as text one of the field's two words, or true, false, on, off, 1, 0
    Number, ///< whole number, least..most
    Share,  ///< number with decimals, least..most
    Text,   ///< QString
    Texts,  ///< QStringList of least..most texts
};

/// Something that can be set by its name, in a scenario or on standard input.
struct Field {
    QString name; ///< OBJECT.ITEM, for example "climate.mainTemp", "vehicle.door", "fault.silence"
    FieldKind kind = FieldKind::Number;
    int count = 1; ///< above 1: so many entries, each settable as NAME.1 to NAME.count, or all as a list
    double least = 0;
    double most = 0;
    QStringList words; ///< of a flag: what stands for false, what for true
    QString about;     ///< one line for help and schema, without a full stop
};

/// One value for one field. Made by the functions below only, which check it.
struct Assignment {
    int field = -1; ///< the row of allFields()
    int entry = -1; ///< 0-based; -1: the whole field
    QVariant value; ///< bool, int, double, QString, QStringList; a QVariantList of `count` for a whole field
};

/// Every field: version, screens, climate, gauges, vehicle, parking, textScreen, measured and fault, in this
/// order.
const QVector<Field> &allFields();

/// The objects that the fields belong to, in the same order.
QStringList allObjects();

/// Finds the row of allFields() and the 0-based entry that a name stands for; the entry is -1 where it stands
/// for the whole field.
/// @return whether there is such a field; else `error` is one line, as assign() gives it
bool findField(const QString &name, int *field, int *entry, QString *error);

/// Checks a value that came typed, from JSON: bool, double, QString, QVariantList.
/// @return whether it fits; else `error` is one line that says what is wrong and what would be right: an
///   unknown name (with the most similar one), a wrong type, a value out of range
bool assign(const QString &name, const QVariant &value, Assignment *assignment, QString *error);

/// The same for a value as it is typed on standard input. A list is separated by commas, and blanks around
/// its parts do not count; a backslash before a comma, a blank or another backslash makes it part of a text.
bool assignText(const QString &name, const QString &text, Assignment *assignment, QString *error);

} // namespace boxsim
