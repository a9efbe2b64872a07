#pragma once

#include "state.h"

#include <QtCore/QString>
#include <QtCore/QStringList>
#include <QtCore/QVariantList>

namespace canbus::qml {

/// The vehicle screen as VelVehicleGroupCmd reports it.
///
/// Label states are -1 until they were received, the check-engine state is 0, texts and lists are empty,
/// flags false. docs/qml.md says shape and range of each.
class VehicleState : public State {
    Q_OBJECT
    Q_PROPERTY(QString title READ title NOTIFY titleChanged)
    Q_PROPERTY(QStringList labels READ labels NOTIFY labelsChanged)
    Q_PROPERTY(int labelState1 READ labelState1 NOTIFY labelState1Changed)
    Q_PROPERTY(int labelState2 READ labelState2 NOTIFY labelState2Changed)
    Q_PROPERTY(QVariantList doors READ doors NOTIFY doorsChanged)
    Q_PROPERTY(bool hood READ hood NOTIFY hoodChanged)
    Q_PROPERTY(bool trunk READ trunk NOTIFY trunkChanged)
    Q_PROPERTY(bool battery READ battery NOTIFY batteryChanged)
    Q_PROPERTY(int checkEngine READ checkEngine NOTIFY checkEngineChanged)
    Q_PROPERTY(QVariantList tires READ tires NOTIFY tiresChanged)
    Q_PROPERTY(QStringList tireTexts READ tireTexts NOTIFY tireTextsChanged)

public:
    explicit VehicleState(QObject *parent = nullptr);

    QString title() const { return m_title; }
    QStringList labels() const { return m_labels; }
    int labelState1() const { return m_labelState1; }
    int labelState2() const { return m_labelState2; }
    QVariantList doors() const { return m_doors; }
    bool hood() const { return m_hood; }
    bool trunk() const { return m_trunk; }
    bool battery() const { return m_battery; }
    int checkEngine() const { return m_checkEngine; }
    QVariantList tires() const { return m_tires; }
    QStringList tireTexts() const { return m_tireTexts; }

Q_SIGNALS:
    void titleChanged();
    void labelsChanged();
    void labelState1Changed();
    void labelState2Changed();
    void doorsChanged();
    void hoodChanged();
    void trunkChanged();
    void batteryChanged();
    void checkEngineChanged();
    void tiresChanged();
    void tireTextsChanged();

private:
    QString m_title;
    QStringList m_labels;
    int m_labelState1 = -1;
    int m_labelState2 = -1;
    QVariantList m_doors;
    bool m_hood = false;
    bool m_trunk = false;
    bool m_battery = false;
    int m_checkEngine = 0;
    QVariantList m_tires;
    QStringList m_tireTexts;
};

} // namespace canbus::qml
