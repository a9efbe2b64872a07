import QtQuick 2.15
import "../style"

// The way to one page.
PressArea {
    id: button

    property string icon
    property string text
    property bool current: false

    radius: 0
    ringMargin: Theme.px(4)

    Rectangle {
        anchors.fill: parent
        color: button.down ? Theme.down : button.current ? Theme.raised : "transparent"
    }

    Rectangle {
        width: Theme.px(5)
        height: parent.height
        visible: button.current
        color: Theme.accent
    }

    Column {
        anchors.centerIn: parent
        spacing: Theme.px(5)

        Icon {
            anchors.horizontalCenter: parent.horizontalCenter
            path: button.icon
            size: Theme.px(32)
            color: button.current ? Theme.accent : Theme.textDim
        }

        Label {
            anchors.horizontalCenter: parent.horizontalCenter
            text: button.text
            font.pixelSize: Theme.smallText
            font.weight: button.current ? Font.DemiBold : Font.Normal
            color: button.current ? Theme.text : Theme.textDim
        }
    }
}
