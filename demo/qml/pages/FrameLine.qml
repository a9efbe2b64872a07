import QtQuick 2.15
import "../controls"
import "../style"

// One frame on the line.
Item {
    id: line

    property string time
    property bool sent: false
    property string hex

    Label {
        id: when

        anchors.verticalCenter: parent.verticalCenter
        width: Theme.px(110)
        text: line.time
        font.family: Theme.mono
        font.pixelSize: Theme.px(14)
        color: Theme.textDim
    }

    Icon {
        id: way

        anchors.left: when.right
        anchors.verticalCenter: parent.verticalCenter
        path: line.sent ? "M12 21 L12 3 M5 10 L12 3 L19 10" : "M12 3 L12 21 M5 14 L12 21 L19 14"
        color: line.sent ? Theme.warm : Theme.good
        size: Theme.px(17)
        thickness: 3
    }

    Label {
        anchors.left: way.right
        anchors.leftMargin: Theme.px(12)
        anchors.right: parent.right
        anchors.verticalCenter: parent.verticalCenter
        text: line.hex
        font.family: Theme.mono
        font.pixelSize: Theme.px(14)
    }
}
