#pragma once

#include "linkhealth.h"

#include <QtCore/QMetaProperty>
#include <QtCore/QStringList>
#include <QtCore/QVariantMap>

/// The figures of a link by their names, those of the maps as "sentByCommand.Time.frames".
inline QVariantMap flattened(const QVariantMap &figures, const QString &prefix = {})
{
    QVariantMap flat;
    for (auto figure = figures.begin(); figure != figures.end(); ++figure) {
        if (figure.value().type() == QVariant::Map)
            flat.insert(flattened(figure.value().toMap(), prefix + figure.key() + '.'));
        else
            flat.insert(prefix + figure.key(), figure.value());
    }
    return flat;
}

inline QVariantMap flattened(const canbus::LinkFigures &figures)
{
    QVariantMap all;
    const QMetaObject &type = canbus::LinkFigures::staticMetaObject;
    for (int index = 0; index < type.propertyCount(); ++index)
        all.insert(type.property(index).name(), type.property(index).readOnGadget(&figures));
    return flattened(all);
}

/// Tells which figures of a link have changed: "receivedFrames 1", in the order of their names, and nothing
/// of those that have not. The times of answers are left out, being others in each run.
class FigureChanges {
public:
    explicit FigureChanges(const canbus::LinkHealth *health)
        : m_health(health)
    {
        take();
    }

    /// The changes since the last call.
    QStringList take()
    {
        const QVariantMap before = m_last;
        m_last = flattened(m_health->figures());
        QStringList changes;
        for (auto figure = m_last.begin(); figure != m_last.end(); ++figure) {
            const qint64 change = figure.value().toLongLong() - before.value(figure.key()).toLongLong();
            if (change != 0 && !figure.key().endsWith(QLatin1String("AnswerUs")))
                changes += figure.key() + ' ' + QString::number(change);
        }
        return changes;
    }

private:
    const canbus::LinkHealth *m_health;
    QVariantMap m_last;
};
