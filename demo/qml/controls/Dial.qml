import QtQuick 2.15
import QtQuick.Shapes 1.15
import "../style"

// The arc of a gauge: 0 to 255 over 270 degrees, filled from the zero position to the value.
Item {
    id: dial

    property int value: -1
    property int zero: 0
    property color color: Theme.accent
    property real thickness: width * 0.07
    readonly property real startAngle: 135
    readonly property real sweep: 270
    readonly property bool isSet: value >= 0
    readonly property real arcRadius: Math.min(width, height) / 2 - thickness / 2

    function angleOf(at) {
        return startAngle + sweep * Math.max(0, Math.min(255, at)) / 255
    }

    Shape {
        anchors.fill: parent

        ShapePath {
            fillColor: "transparent"
            strokeColor: Theme.line
            strokeWidth: dial.thickness
            capStyle: ShapePath.FlatCap

            PathAngleArc {
                centerX: dial.width / 2
                centerY: dial.height / 2
                radiusX: dial.arcRadius
                radiusY: dial.arcRadius
                startAngle: dial.startAngle
                sweepAngle: dial.sweep
            }
        }

        ShapePath {
            fillColor: "transparent"
            strokeColor: dial.isSet ? dial.color : "transparent"
            strokeWidth: dial.thickness
            capStyle: ShapePath.FlatCap

            PathAngleArc {
                centerX: dial.width / 2
                centerY: dial.height / 2
                radiusX: dial.arcRadius
                radiusY: dial.arcRadius
                startAngle: dial.angleOf(dial.zero)
                sweepAngle: dial.isSet ? dial.angleOf(dial.value) - dial.angleOf(dial.zero) : 0
            }
        }
    }

    // Where nothing is.
    Rectangle {
        readonly property real angle: dial.angleOf(dial.zero) * Math.PI / 180

        x: dial.width / 2 + Math.cos(angle) * dial.arcRadius - width / 2
        y: dial.height / 2 + Math.sin(angle) * dial.arcRadius - height / 2
        width: dial.thickness * 1.5
        height: 3
        radius: 1
        rotation: dial.angleOf(dial.zero)
        color: Theme.textDim
        antialiasing: true
    }

    // The value's hand.
    Rectangle {
        readonly property real angle: dial.angleOf(dial.value) * Math.PI / 180

        visible: dial.isSet
        x: dial.width / 2 + Math.cos(angle) * dial.arcRadius - width / 2
        y: dial.height / 2 + Math.sin(angle) * dial.arcRadius - height / 2
        width: dial.thickness * 1.7
        height: 5
        radius: 2
        rotation: dial.angleOf(dial.value)
        color: Theme.text
        antialiasing: true
    }
}
