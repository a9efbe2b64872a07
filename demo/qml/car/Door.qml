import QtQuick 2.15
import QtQuick.Shapes 1.15
import "../style"

// A door from above, with its hinge at the top; open, it stands off the car.
Shape {
    id: door

    property bool open: false
    property bool isLeft: true

    transformOrigin: Item.Top
    rotation: open ? (isLeft ? 58 : -58) : 0

    ShapePath {
        fillColor: "transparent"
        strokeColor: door.open ? Theme.alarm : Theme.night ? "#4a5a6a" : "#93a1af"
        strokeWidth: 9
        capStyle: ShapePath.RoundCap
        startX: 0
        startY: 4

        PathLine {
            x: 0
            y: door.height - 4
        }
    }
}
