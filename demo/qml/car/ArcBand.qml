import QtQuick 2.15
import QtQuick.Shapes 1.15

// One band of a zone in front of the car or behind it.
ShapePath {
    id: band

    property real radius: 100
    property real centerX: 0
    property real centerY: 0
    property real from: 0
    property real sweep: 20

    fillColor: "transparent"
    capStyle: ShapePath.FlatCap

    PathAngleArc {
        centerX: band.centerX
        centerY: band.centerY
        radiusX: band.radius
        radiusY: band.radius
        startAngle: band.from
        sweepAngle: band.sweep
    }
}
