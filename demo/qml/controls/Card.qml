import QtQuick 2.15
import "../style"

// A surface that holds what belongs together.
Rectangle {
    radius: Theme.radius + Theme.px(4)
    color: Theme.surface
    border.width: Theme.px(1)
    border.color: Theme.night ? "transparent" : Theme.line
}
