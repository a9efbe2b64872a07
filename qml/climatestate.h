#pragma once

#include "state.h"

#include <QtCore/QString>
#include <QtCore/QStringList>
#include <QtCore/QVariantList>

namespace canbus::qml {

/// The climate screen as VelClimateGroupCmd reports it.
///
/// Integers are -1 until they were received, texts and lists empty, flags false. docs/qml.md says shape and
/// range of each.
class ClimateState : public State {
    Q_OBJECT
    Q_PROPERTY(int type READ type NOTIFY typeChanged)
    Q_PROPERTY(QString title READ title NOTIFY titleChanged)
    Q_PROPERTY(QStringList labels READ labels NOTIFY labelsChanged)
    Q_PROPERTY(int mainTemp READ mainTemp NOTIFY mainTempChanged)
    Q_PROPERTY(int mainUnit READ mainUnit NOTIFY mainUnitChanged)
    Q_PROPERTY(int secondTemp READ secondTemp NOTIFY secondTempChanged)
    Q_PROPERTY(int secondUnit READ secondUnit NOTIFY secondUnitChanged)
    Q_PROPERTY(int leftHeatedSeat READ leftHeatedSeat NOTIFY leftHeatedSeatChanged)
    Q_PROPERTY(int rightHeatedSeat READ rightHeatedSeat NOTIFY rightHeatedSeatChanged)
    Q_PROPERTY(int leftCooledSeat READ leftCooledSeat NOTIFY leftCooledSeatChanged)
    Q_PROPERTY(int rightCooledSeat READ rightCooledSeat NOTIFY rightCooledSeatChanged)
    Q_PROPERTY(int fanDirectValue READ fanDirectValue NOTIFY fanDirectValueChanged)
    Q_PROPERTY(int fanDirect READ fanDirect NOTIFY fanDirectChanged)
    Q_PROPERTY(int fanSpeedStatus READ fanSpeedStatus NOTIFY fanSpeedStatusChanged)
    Q_PROPERTY(int ventPosition READ ventPosition NOTIFY ventPositionChanged)
    Q_PROPERTY(int manualTemp READ manualTemp NOTIFY manualTempChanged)
    Q_PROPERTY(bool systemOn READ systemOn NOTIFY systemOnChanged)
    Q_PROPERTY(bool driverSeat READ driverSeat NOTIFY driverSeatChanged)
    Q_PROPERTY(QVariantList buttons READ buttons NOTIFY buttonsChanged)

public:
    explicit ClimateState(QObject *parent = nullptr);

    int type() const { return m_type; }
    QString title() const { return m_title; }
    QStringList labels() const { return m_labels; }
    int mainTemp() const { return m_mainTemp; }
    int mainUnit() const { return m_mainUnit; }
    int secondTemp() const { return m_secondTemp; }
    int secondUnit() const { return m_secondUnit; }
    int leftHeatedSeat() const { return m_leftHeatedSeat; }
    int rightHeatedSeat() const { return m_rightHeatedSeat; }
    int leftCooledSeat() const { return m_leftCooledSeat; }
    int rightCooledSeat() const { return m_rightCooledSeat; }
    int fanDirectValue() const { return m_fanDirectValue; }
    int fanDirect() const { return m_fanDirect; }
    int fanSpeedStatus() const { return m_fanSpeedStatus; }
    int ventPosition() const { return m_ventPosition; }
    int manualTemp() const { return m_manualTemp; }
    bool systemOn() const { return m_systemOn; }
    bool driverSeat() const { return m_driverSeat; }
    QVariantList buttons() const { return m_buttons; }

Q_SIGNALS:
    void typeChanged();
    void titleChanged();
    void labelsChanged();
    void mainTempChanged();
    void mainUnitChanged();
    void secondTempChanged();
    void secondUnitChanged();
    void leftHeatedSeatChanged();
    void rightHeatedSeatChanged();
    void leftCooledSeatChanged();
    void rightCooledSeatChanged();
    void fanDirectValueChanged();
    void fanDirectChanged();
    void fanSpeedStatusChanged();
    void ventPositionChanged();
    void manualTempChanged();
    void systemOnChanged();
    void driverSeatChanged();
    void buttonsChanged();

private:
    int m_type = -1;
    QString m_title;
    QStringList m_labels;
    int m_mainTemp = -1;
    int m_mainUnit = -1;
    int m_secondTemp = -1;
    int m_secondUnit = -1;
    int m_leftHeatedSeat = -1;
    int m_rightHeatedSeat = -1;
    int m_leftCooledSeat = -1;
    int m_rightCooledSeat = -1;
    int m_fanDirectValue = -1;
    int m_fanDirect = -1;
    int m_fanSpeedStatus = -1;
    int m_ventPosition = -1;
    int m_manualTemp = -1;
    bool m_systemOn = false;
    bool m_driverSeat = false;
    QVariantList m_buttons;
};

} // namespace canbus::qml
