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

    height: 45

    Rectangle {
        id: dot

        anchors.verticalCenter: parent.verticalCenter
        visible: line.icon === ""
        x: 5
        width: 14
        height: 14
        radius: 7
        color: line.color
    }

    Icon {
        anchors.verticalCenter: parent.verticalCenter
        visible: line.icon !== ""
        path: line.icon
        size: 26
        color: line.color
    }

    Label {
        anchors.verticalCenter: parent.verticalCenter
        x: 38
        width: parent.width - x - value.width - 8
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
