#pragma once

#include "state.h"

#include <QtCore/QVariantList>
#include <QtCore/QVariantMap>

namespace canbus::qml {

/// Which screens the box has something for, as CanBusPlayer reports it.
///
/// The link fixes the meaning of screen 1 alone, the one that brings the reverse camera. Which number any
/// other screen has is the box's choice: `numbers` says which, and can be set.
class ScreensState : public State {
    Q_OBJECT
    Q_PROPERTY(QVariantList supported READ supported NOTIFY supportedChanged)
    Q_PROPERTY(bool climate READ hasClimate NOTIFY climateChanged)
    Q_PROPERTY(bool gauges READ hasGauges NOTIFY gaugesChanged)
    Q_PROPERTY(bool vehicle READ hasVehicle NOTIFY vehicleChanged)
    Q_PROPERTY(bool parking READ hasParking NOTIFY parkingChanged)
    Q_PROPERTY(bool menu READ hasMenu NOTIFY menuChanged)
    Q_PROPERTY(bool reverseCamera READ hasReverseCamera NOTIFY reverseCameraChanged)
    Q_PROPERTY(QVariantMap numbers READ numbers WRITE setNumbers NOTIFY numbersChanged)

public:
    explicit ScreensState(QObject *parent = nullptr);

    QVariantList supported() const { return m_supported; }
    bool hasClimate() const { return m_climate; }
    bool hasGauges() const { return m_gauges; }
    bool hasVehicle() const { return m_vehicle; }
    bool hasParking() const { return m_parking; }
    bool hasMenu() const { return m_menu; }
    bool hasReverseCamera() const { return m_reverseCamera; }
    QVariantMap numbers() const { return m_numbers; }

    /// @param numbers  by the names of the properties, from `climate` to `menu`; a screen without a number
    ///   from 0 to 4 counts as not supported
    void setNumbers(const QVariantMap &numbers);

Q_SIGNALS:
    void supportedChanged();
    void climateChanged();
    void gaugesChanged();
    void vehicleChanged();
    void parkingChanged();
    void menuChanged();
    void reverseCameraChanged();
    void numbersChanged();

private:
    void take(const QMap<int, bool> &supported);
    void update(Changed<ScreensState> supportedDue);
    bool isSupported(const QString &name) const;

    QVariantList m_supported;
    bool m_climate = false;
    bool m_gauges = false;
    bool m_vehicle = false;
    bool m_parking = false;
    bool m_menu = false;
    bool m_reverseCamera = false;
    QVariantMap m_numbers;
};

} // namespace canbus::qml
