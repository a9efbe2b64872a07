#include "fields.h"

#include "fieldvalues.h"

#include "commandline/similarnames.h"

#include <QtCore/QHash>

namespace boxsim {

namespace {

constexpr QChar kDot = QLatin1Char('.');

QString objectOf(const QString &name)
{
    return name.section(kDot, 0, 0);
}

/// "a, b and c".
QString enumerated(const QStringList &names)
{
    return names.size() < 2
        ? names.join(QString())
        : names.mid(0, names.size() - 1).join(QStringLiteral(", ")) + QStringLiteral(" and ") + names.last();
}

/// The names of an object's fields.
QStringList fieldsOf(const QString &object)
{
    QStringList names;
    for (const Field &field : allFields()) {
        if (objectOf(field.name) == object)
            names.append(field.name);
    }
    return names;
}

/// The row of the field with exactly this name, or -1.
int rowOf(const QString &name)
{
    static const QHash<QString, int> rows = [] {
        QHash<QString, int> all;
        for (int row = 0; row < allFields().size(); ++row)
            all.insert(allFields().at(row).name, row);
        return all;
    }();
    return rows.value(name, -1);
}

QString unknownName(const QString &name)
{
    const QStringList names = fieldsOf(objectOf(name));
    if (names.isEmpty())
        return QStringLiteral("no object \"%1\": there are %2").arg(objectOf(name), enumerated(allObjects()));
    const QString all = QStringLiteral("there are %1").arg(enumerated(names));
    const QString offer = name.contains(kDot) ? canbus::didYouMean(name, names, all) : all;
    return QStringLiteral("no field \"%1\": %2").arg(name, offer);
}

bool findEntry(const Field &field, const QString &text, int *entry, QString *error)
{
    bool isNumber = false;
    const int number = text.toInt(&isNumber);
    if (field.count > 1 && isNumber && number >= 1 && number <= field.count) {
        *entry = number - 1;
        return true;
    }
    const QString instead = isNumber ? QString::number(number) : QStringLiteral("\"%1\"").arg(text);
    *error = field.count == 1 ? QStringLiteral("%1 has no entries, and so no %2").arg(field.name, instead)
                              : QStringLiteral("%1 has the entries 1 to %2, not %3")
                                    .arg(field.name, QString::number(field.count), instead);
    return false;
}

} // namespace

QStringList allObjects()
{
    QStringList objects;
    for (const Field &field : allFields())
        objects.append(objectOf(field.name));
    objects.removeDuplicates();
    return objects;
}

bool findField(const QString &name, int *field, int *entry, QString *error)
{
    *entry = -1;
    *field = rowOf(name);
    if (*field >= 0)
        return true;
    *field = rowOf(name.section(kDot, 0, 1));
    if (*field >= 0)
        return findEntry(allFields().at(*field), name.section(kDot, 2), entry, error);
    *error = unknownName(name);
    return false;
}

bool assign(const QString &name, const QVariant &value, Assignment *assignment, QString *error)
{
    if (!findField(name, &assignment->field, &assignment->entry, error))
        return false;
    const Field &field = allFields().at(assignment->field);
    return field.count > 1 && assignment->entry < 0
        ? checkAllEntries(field, value, &assignment->value, error)
        : checkEntry(field, name, value, &assignment->value, error);
}

bool assignText(const QString &name, const QString &text, Assignment *assignment, QString *error)
{
    if (!findField(name, &assignment->field, &assignment->entry, error))
        return false;
    const Field &field = allFields().at(assignment->field);
    return assign(name, typedValue(field, field.count > 1 && assignment->entry < 0, text), assignment, error);
}

} // namespace boxsim
