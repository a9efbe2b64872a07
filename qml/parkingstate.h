#pragma once

#include "state.h"

#include <QtCore/QString>
#include <QtCore/QStringList>
#include <QtCore/QVariantList>

namespace canbus::qml {

/// The parking screen as VelParkingGroupCmd reports it.
///
/// Lists and texts are empty until they were received; the label states are 0, as in the group. docs/qml.md
/// says shape and range of each.
class ParkingState : public State {
    Q_OBJECT
    Q_PROPERTY(QString title READ title NOTIFY titleChanged)
    Q_PROPERTY(QStringList labels READ labels NOTIFY labelsChanged)
    Q_PROPERTY(int labelState1 READ labelState1 NOTIFY labelState1Changed)
    Q_PROPERTY(int labelState2 READ labelState2 NOTIFY labelState2Changed)
    Q_PROPERTY(QVariantList front READ front NOTIFY frontChanged)
    Q_PROPERTY(QVariantList rear READ rear NOTIFY rearChanged)
    Q_PROPERTY(QVariantList left READ left NOTIFY leftChanged)
    Q_PROPERTY(QVariantList right READ right NOTIFY rightChanged)
    Q_PROPERTY(QVariantList sensors READ sensors NOTIFY sensorsChanged)

public:
    explicit ParkingState(QObject *parent = nullptr);

    QString title() const { return m_title; }
    QStringList labels() const { return m_labels; }
    int labelState1() const { return m_labelState1; }
    int labelState2() const { return m_labelState2; }
    QVariantList front() const { return m_front; }
    QVariantList rear() const { return m_rear; }
    QVariantList left() const { return m_left; }
    QVariantList right() const { return m_right; }
    QVariantList sensors() const { return m_sensors; }

Q_SIGNALS:
    void titleChanged();
    void labelsChanged();
    void labelState1Changed();
    void labelState2Changed();
    void frontChanged();
    void rearChanged();
    void leftChanged();
    void rightChanged();
    void sensorsChanged();

private:
    QString m_title;
    QStringList m_labels;
    int m_labelState1 = 0;
    int m_labelState2 = 0;
    QVariantList m_front;
    QVariantList m_rear;
    QVariantList m_left;
    QVariantList m_right;
    QVariantList m_sensors;
};

} // namespace canbus::qml
