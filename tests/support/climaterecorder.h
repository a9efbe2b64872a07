#pragma once

#include "velclimategroupcmd.h"

#include <QtCore/QStringList>

/// Writes down what a climate group announces, in order: "updateClimateMainTemp 300 1".
class ClimateRecorder : public QObject {
public:
    explicit ClimateRecorder(canbus::VelClimateGroupCmd &group)
        : m_group(group)
    {
        using Group = canbus::VelClimateGroupCmd;
        number("updateClimateType", &Group::updateClimateType);
        connect(&group, &Group::updateClimateTopText, this,
                [this](const QString &title) { m_seen += "updateClimateTopText \"" + title + '"'; });
        connect(&group, &Group::updateClimateComText, this,
                [this](const QStringList &labels) { m_seen += "updateClimateComText " + labels.join('|'); });
        connect(&group, &Group::updateClimateBtnStatus, this,
                [this](const QList<int> &states) { m_seen += "updateClimateBtnStatus " + digits(states); });
        pair("updateClimateMainTemp", &Group::updateClimateMainTemp);
        pair("updateClimateSecondTemp", &Group::updateClimateSecondTemp);
        pair("updateClimateHeatSeat", &Group::updateClimateHeatSeat);
        pair("updateClimateCoolSeat", &Group::updateClimateCoolSeat);
        number("updateClimateFanDirectValue", &Group::updateClimateFanDirectValue);
        number("updateClimateFanSpeedStatus", &Group::updateClimateFanSpeedStatus);
        number("updateClimateVentPosition", &Group::updateClimateVentPosition);
        number("updateClimateFanDirect", &Group::updateClimateFanDirect);
        number("updateClimateManualTempValue", &Group::updateClimateManualTempValue);
        flag("updateClimateSystem", &Group::updateClimateSystem);
        flag("updateClimateDriverSeatPos", &Group::updateClimateDriverSeatPos);
    }

    /// What has been announced since the last call.
    QStringList take()
    {
        const QStringList seen = m_seen;
        m_seen.clear();
        return seen;
    }

private:
    static QString digits(const QList<int> &states)
    {
        QString all;
        for (const int state : states)
            all += QString::number(state);
        return all;
    }

    template <class Signal>
    void number(const char *name, Signal signal)
    {
        connect(&m_group, signal, this,
                [this, name](int value) { m_seen += QStringLiteral("%1 %2").arg(name).arg(value); });
    }

    template <class Signal>
    void pair(const char *name, Signal signal)
    {
        connect(&m_group, signal, this, [this, name](int first, int second) {
            m_seen += QStringLiteral("%1 %2 %3").arg(name).arg(first).arg(second);
        });
    }

    template <class Signal>
    void flag(const char *name, Signal signal)
    {
        connect(&m_group, signal, this, [this, name](bool value) {
            m_seen += QStringLiteral("%1 %2").arg(name, value ? "true" : "false");
        });
    }

    canbus::VelClimateGroupCmd &m_group;
    QStringList m_seen;
};
