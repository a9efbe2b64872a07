#pragma once

#include <QtCore/QMap>
#include <QtCore/QString>
#include <QtCore/QStringList>
#include <QtCore/QVector>

#include <random>

/// One way to leave a process: a value for each thing in which the ways differ, by their names.
using ExitPlan = QMap<QString, QString>;

/// The plan as the head unit's arguments, "name=value".
QStringList argumentsOf(const ExitPlan &plan);

/// Deals out plans by chance, so that each value of each thing comes up equally often.
class ExitPlans {
public:
    explicit ExitPlans(quint32 seed);

    ExitPlan next();

    /// All that plans differ in, with the values.
    static const QMap<QString, QStringList> &choices();

private:
    QString draw(const QString &name);
    int below(int end);

    std::mt19937 m_chance;
    QMap<QString, QStringList> m_decks; ///< what is left of each thing's values in this round
};
