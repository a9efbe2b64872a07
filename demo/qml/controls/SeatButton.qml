import QtQuick 2.15
import "../style"

// A seat's heating or cooling, with its level of eight as bars.
PressArea {
    id: button

    property string icon
    property int level: 0
    property color color: Theme.warm
    readonly property int levels: 8

    Face {
        down: button.down
    }

    Icon {
        anchors.horizontalCenter: parent.horizontalCenter
        anchors.top: parent.top
        anchors.topMargin: Theme.px(10)
        path: button.icon
        size: Theme.px(32)
        color: button.level > 0 ? button.color : Theme.text
    }

    Row {
        anchors.horizontalCenter: parent.horizontalCenter
        anchors.bottom: parent.bottom
        anchors.bottomMargin: Theme.px(9)
        spacing: Theme.px(3)

        Repeater {
            model: button.levels

            Rectangle {
                width: (button.width - Theme.px(24) - Theme.px(3) * (button.levels - 1)) / button.levels
                height: Theme.px(7)
                radius: Theme.px(2)
                color: index < button.level ? button.color : Theme.line
            }
        }
    }
}
