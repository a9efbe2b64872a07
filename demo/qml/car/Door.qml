import QtQuick 2.15
import "../style"

// A door from above, with its hinge at the top; open, it stands off the car.
Rectangle {
    property bool open: false
    property bool isLeft: true

    width: 9
    radius: 4
    color: open ? Theme.alarm : Theme.night ? "#4a5a6a" : "#93a1af"
    antialiasing: true
    transformOrigin: Item.Top
    rotation: open ? (isLeft ? 58 : -58) : 0
}
