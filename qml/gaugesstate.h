#pragma once

#include "state.h"

#include <QtCore/QString>
#include <QtCore/QStringList>
#include <QtCore/QVariantList>

namespace canbus::qml {

/// The gauges screen as VelGaugesGroupCmd reports it.
///
/// Lists of five are in the order centre, top left, top right, bottom left, bottom right. Integers are -1
/// until they were received, texts and lists empty, flags false. docs/qml.md says shape and range of each.
class GaugesState : public State {
    Q_OBJECT
    Q_PROPERTY(QVariantList types READ types NOTIFY typesChanged)
    Q_PROPERTY(QString title READ title NOTIFY titleChanged)
    Q_PROPERTY(QStringList labels READ labels NOTIFY labelsChanged)
    Q_PROPERTY(int labelState1 READ labelState1 NOTIFY labelState1Changed)
    Q_PROPERTY(int labelState2 READ labelState2 NOTIFY labelState2Changed)
    Q_PROPERTY(QStringList scale READ scale NOTIFY scaleChanged)
    Q_PROPERTY(QStringList centerTexts READ centerTexts NOTIFY centerTextsChanged)
    Q_PROPERTY(QStringList topTexts READ topTexts NOTIFY topTextsChanged)
    Q_PROPERTY(QStringList bottomTexts READ bottomTexts NOTIFY bottomTextsChanged)
    Q_PROPERTY(QVariantList values READ values NOTIFY valuesChanged)
    Q_PROPERTY(QStringList valueTexts READ valueTexts NOTIFY valueTextsChanged)
    Q_PROPERTY(QVariantList zeroPositions READ zeroPositions NOTIFY zeroPositionsChanged)
    Q_PROPERTY(QVariantList formats READ formats NOTIFY formatsChanged)
    Q_PROPERTY(int peakColor READ peakColor NOTIFY peakColorChanged)
    Q_PROPERTY(bool shift READ shift NOTIFY shiftChanged)

public:
    explicit GaugesState(QObject *parent = nullptr);

    QVariantList types() const { return m_types; }
    QString title() const { return m_title; }
    QStringList labels() const { return m_labels; }
    int labelState1() const { return m_labelState1; }
    int labelState2() const { return m_labelState2; }
    QStringList scale() const { return m_scale; }
    QStringList centerTexts() const { return m_centerTexts; }
    QStringList topTexts() const { return m_topTexts; }
    QStringList bottomTexts() const { return m_bottomTexts; }
    QVariantList values() const { return m_values; }
    QStringList valueTexts() const { return m_valueTexts; }
    QVariantList zeroPositions() const { return m_zeroPositions; }
    QVariantList formats() const { return m_formats; }
    int peakColor() const { return m_peakColor; }
    bool shift() const { return m_shift; }

Q_SIGNALS:
    void typesChanged();
    void titleChanged();
    void labelsChanged();
    void labelState1Changed();
    void labelState2Changed();
    void scaleChanged();
    void centerTextsChanged();
    void topTextsChanged();
    void bottomTextsChanged();
    void valuesChanged();
    void valueTextsChanged();
    void zeroPositionsChanged();
    void formatsChanged();
    void peakColorChanged();
    void shiftChanged();

private:
    QVariantList m_types;
    QString m_title;
    QStringList m_labels;
    int m_labelState1 = -1;
    int m_labelState2 = -1;
    QStringList m_scale;
    QStringList m_centerTexts;
    QStringList m_topTexts;
    QStringList m_bottomTexts;
    QVariantList m_values;
    QStringList m_valueTexts;
    QVariantList m_zeroPositions;
    QVariantList m_formats;
    int m_peakColor = -1;
    bool m_shift = false;
};

} // namespace canbus::qml
