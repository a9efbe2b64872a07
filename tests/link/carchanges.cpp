#include "carchanges.h"

#include <algorithm>

using boxsim::Assignment;
using boxsim::Field;
using boxsim::FieldKind;

namespace {

constexpr int kFullScale = 11;

// Of one to four bytes in UTF-8.
const QStringList kCharacters {"A", "z", "0", " ", "/", "%", "ä", "ß", "°", "é", "Ж", "€", "→", "温", "🚗"};

/// Not what is measured, which the gauges show as they are set, nor what is wrong.
bool isOfCar(const QString &field)
{
    static const QStringList kObjects {"screens", "climate", "gauges", "vehicle", "parking", "textScreen"};
    return kObjects.contains(field.section('.', 0, 0));
}

QString text(int longest, Chance &chance)
{
    QString text;
    for (int left = chance.below(longest + 1); left > 0; --left)
        text += kCharacters.at(chance.below(kCharacters.size()));
    return text;
}

QStringList texts(int fewest, int most, Chance &chance)
{
    QStringList texts;
    for (int left = chance.between(fewest, most); left > 0; --left)
        texts += text(8, chance);
    return texts;
}

QVariant entry(const Field &field, Chance &chance)
{
    switch (field.kind) {
    case FieldKind::Flag:
        return chance.happens(0.5);
    case FieldKind::Text:
        return text(12, chance);
    case FieldKind::Texts:
        return texts(1, 4, chance); // an empty list is no payload, and is refused
    case FieldKind::Number:
    case FieldKind::Share:
        break;
    }
    return chance.between(int(field.least), int(field.most));
}

/// A scale of single characters, which fit in any place, and the texts that stand behind a full one alone.
QVariantList scaleAndTexts(Chance &chance)
{
    const bool isFull = chance.happens(0.5);
    QStringList scale;
    while (scale.size() < (isFull ? kFullScale : 1 + chance.below(kFullScale - 1)))
        scale += QString(QChar('!' + chance.below('~' - '!' + 1)));
    return {scale, isFull ? texts(0, 4, chance) : QStringList()};
}

Assignment assignment(const QString &name, const QVariant &value)
{
    Assignment made;
    QString error;
    if (!boxsim::assign(name, value, &made, &error))
        qFatal("%s", qPrintable(error));
    return made;
}

} // namespace

CarChanges::CarChanges()
{
    const QVector<Field> &fields = boxsim::allFields();
    for (int i = 0; i < fields.size(); ++i) {
        // The texts of the centre gauge are drawn together with its scale.
        const QString &name = fields.at(i).name;
        if (isOfCar(name) && name != QLatin1String("gauges.centerTexts"))
            m_fields += i;
    }
}

QVector<Assignment> CarChanges::some(const boxsim::BenchState &state, Chance &chance) const
{
    return sendable(state, [&] {
        QVector<Assignment> changes;
        for (int left = chance.between(1, 6); left > 0; --left)
            changes += drawn(m_fields.at(chance.below(m_fields.size())), chance);
        return changes;
    });
}

QVector<Assignment> CarChanges::all(const boxsim::BenchState &state, Chance &chance) const
{
    return sendable(state, [&] {
        QVector<Assignment> changes;
        for (const int field : m_fields)
            changes += drawn(field, chance);
        return changes;
    });
}

bool CarChanges::canBeSent(const boxsim::CarState &car)
{
    const QVector<boxsim::CategoryFrame> frames = boxsim::framesOf(car);
    return std::none_of(frames.begin(), frames.end(), [](const boxsim::CategoryFrame &frame) {
        return frame.payload.contains("\x9f\x03");
    });
}

QVector<Assignment> CarChanges::drawn(int field, Chance &chance) const
{
    const Field &row = boxsim::allFields().at(field);
    if (row.name == QLatin1String("gauges.scale")) {
        const QVariantList both = scaleAndTexts(chance);
        return {assignment(row.name, both.at(0)), assignment("gauges.centerTexts", both.at(1))};
    }
    if (row.count == 1)
        return {assignment(row.name, entry(row, chance))};
    QVariantList entries;
    while (entries.size() < row.count)
        entries += entry(row, chance);
    return {assignment(row.name, entries)};
}

/// Draws until the state with the changes can be sent.
template <class Draw>
QVector<Assignment> CarChanges::sendable(const boxsim::BenchState &state, Draw &&draw) const
{
    for (;;) {
        const QVector<Assignment> changes = draw();
        boxsim::BenchState changed = state;
        for (const Assignment &change : changes)
            boxsim::apply(changed, change);
        if (canBeSent(changed.car))
            return changes;
    }
}
