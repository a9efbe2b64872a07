import QtQuick 2.15
import "../controls"
import "../style"

// A line that says how one thing of the car is.
Item {
    id: line

    property string title
    property string text
    property color color: Theme.good
    property string icon

    height: Theme.px(45)

    Rectangle {
        id: dot

        anchors.verticalCenter: parent.verticalCenter
        visible: line.icon === ""
        x: Theme.px(5)
        width: Theme.px(14)
        height: Theme.px(14)
        radius: Theme.px(7)
        color: line.color
    }

    Icon {
        anchors.verticalCenter: parent.verticalCenter
        visible: line.icon !== ""
        path: line.icon
        size: Theme.px(26)
        color: line.color
    }

    Label {
        anchors.verticalCenter: parent.verticalCenter
        x: Theme.px(38)
        width: parent.width - x - value.width - Theme.px(8)
        text: line.title
        color: Theme.textDim
    }

    Label {
        id: value

        anchors.verticalCenter: parent.verticalCenter
        anchors.right: parent.right
        text: line.text
        font.weight: Font.DemiBold
        color: line.color === Theme.good ? Theme.text : line.color
    }
}
