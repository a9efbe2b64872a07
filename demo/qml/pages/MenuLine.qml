import QtQuick 2.15
import "../controls"
import "../style"

// A line of the box's menu.
PressArea {
    id: line

    property string text
    property bool chosen: false
    property bool leads: false

    Face {
        down: line.down
        border.width: line.chosen ? Theme.px(2) : Theme.px(1)
        border.color: line.chosen || line.down ? Theme.accent : Theme.line
    }

    Rectangle {
        x: Theme.px(12)
        anchors.verticalCenter: parent.verticalCenter
        width: Theme.px(6)
        height: parent.height - Theme.px(32)
        radius: Theme.px(3)
        color: line.chosen ? Theme.accent : Theme.line
    }

    Label {
        anchors.left: parent.left
        anchors.leftMargin: Theme.px(36)
        anchors.right: arrow.left
        anchors.verticalCenter: parent.verticalCenter
        text: line.text
        font.pixelSize: Theme.titleText
    }

    Icon {
        id: arrow

        anchors.right: parent.right
        anchors.rightMargin: Theme.px(22)
        anchors.verticalCenter: parent.verticalCenter
        visible: line.leads
        path: "M9 5 L16 12 L9 19"
        color: Theme.textDim
    }
}
