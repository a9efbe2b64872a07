import QtQuick 2.15
import "../style"

// A surface that holds what belongs together.
Rectangle {
    radius: Theme.radius + 4
    color: Theme.surface
    border.width: 1
    border.color: Theme.night ? "transparent" : Theme.line
}
