#pragma once

#include <QtGui/QColor>
#include <QtQuick/QQuickPaintedItem>

namespace canbus::headunit {

/// The arc of a gauge, for QML: 0 to 255 over 270 degrees, filled from the zero position to the value, with a
/// mark at either.
///
/// Painted here and not by shapes of QML: those are laid out while a frame is being prepared, and cost a
/// second frame for each change.
class DialFace : public QQuickPaintedItem {
    Q_OBJECT
    /// -1 while there is none.
    Q_PROPERTY(int value MEMBER m_value NOTIFY changed)
    Q_PROPERTY(int zero MEMBER m_zero NOTIFY changed)
    Q_PROPERTY(qreal thickness MEMBER m_thickness NOTIFY changed)
    Q_PROPERTY(QColor color MEMBER m_color NOTIFY changed)
    Q_PROPERTY(QColor trackColor MEMBER m_trackColor NOTIFY changed)
    Q_PROPERTY(QColor handColor MEMBER m_handColor NOTIFY changed)
    Q_PROPERTY(QColor zeroColor MEMBER m_zeroColor NOTIFY changed)

public:
    explicit DialFace(QQuickItem *parent = nullptr);

    void paint(QPainter *painter) override;

    /// The direction of a position, in degrees, clockwise from three o'clock.
    Q_INVOKABLE static qreal angleOf(qreal position);

Q_SIGNALS:
    void changed();

private:
    QRectF arcRect() const;
    void paintArc(QPainter *painter, qreal from, qreal to, const QColor &color) const;
    void paintMark(QPainter *painter, qreal position, qreal length, qreal width, const QColor &color) const;

    int m_value = -1;
    int m_zero = 0;
    qreal m_thickness = 10;
    QColor m_color;
    QColor m_trackColor;
    QColor m_handColor;
    QColor m_zeroColor;
};

} // namespace canbus::headunit
