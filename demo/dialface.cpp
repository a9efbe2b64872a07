#include "dialface.h"

#include <QtCore/QtMath>
#include <QtGui/QPainter>

namespace canbus::headunit {

namespace {

constexpr qreal kStart = 135;
constexpr qreal kSweep = 270;
constexpr qreal kHighest = 255;
constexpr qreal kHandLength = 1.7; // of the thickness
constexpr qreal kZeroLength = 1.5;

} // namespace

DialFace::DialFace(QQuickItem *parent)
    : QQuickPaintedItem(parent)
{
    setAntialiasing(true);
    connect(this, &DialFace::changed, this, [this] { update(); });
}

qreal DialFace::angleOf(qreal position)
{
    return kStart + kSweep * qBound(0.0, position, kHighest) / kHighest;
}

QRectF DialFace::arcRect() const
{
    // The hand stands out of the arc.
    const qreal diameter = qMin(width(), height()) - m_thickness * kHandLength;
    const QRectF rect(0, 0, diameter, diameter);
    return rect.translated(QPointF(width() - diameter, height() - diameter) / 2);
}

void DialFace::paint(QPainter *painter)
{
    paintArc(painter, 0, kHighest, m_trackColor);
    if (m_value >= 0)
        paintArc(painter, m_zero, m_value, m_color);
    paintMark(painter, m_zero, kZeroLength * m_thickness, m_thickness / 8, m_zeroColor);
    if (m_value >= 0)
        paintMark(painter, m_value, kHandLength * m_thickness, m_thickness / 4, m_handColor);
}

void DialFace::paintArc(QPainter *painter, qreal from, qreal to, const QColor &color) const
{
    constexpr qreal kParts = 16; // of a degree, and QPainter counts them the other way round
    painter->setPen(QPen(color, m_thickness, Qt::SolidLine, Qt::FlatCap));
    painter->drawArc(arcRect(), qRound(-angleOf(from) * kParts),
                     qRound((angleOf(from) - angleOf(to)) * kParts));
}

void DialFace::paintMark(QPainter *painter, qreal position, qreal length, qreal width,
                         const QColor &color) const
{
    const QRectF rect = arcRect();
    const qreal angle = qDegreesToRadians(angleOf(position));
    const QPointF direction(qCos(angle), qSin(angle));
    painter->setPen(QPen(color, qMax(2.0, width), Qt::SolidLine, Qt::FlatCap));
    painter->drawLine(rect.center() + direction * (rect.width() - length) / 2,
                      rect.center() + direction * (rect.width() + length) / 2);
}

} // namespace canbus::headunit
