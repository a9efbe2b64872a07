import QtQuick 2.15
import "../style"

// The face of a button: raised, and darker while it is down.
Rectangle {
    property bool down: false

    anchors.fill: parent
    radius: Theme.radius
    color: down ? Theme.down : Theme.raised
    border.width: Theme.px(1)
    border.color: down ? Theme.accent : Theme.line
}
