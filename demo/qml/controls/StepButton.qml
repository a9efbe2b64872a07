import QtQuick 2.15
import "../style"

// A button with an icon alone, for plus and minus.
PressArea {
    id: button

    property string icon
    property int lamp: 0

    Face {
        down: button.down
        border.color: button.down ? Theme.accent : button.lamp > 0 ? Theme.lamp(button.lamp) : Theme.line
    }

    Icon {
        anchors.centerIn: parent
        path: button.icon
        size: Theme.px(28)
        thickness: 2.4
    }
}
