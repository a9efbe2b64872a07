import QtQuick 2.15
import "../controls"
import "../style"

// One figure of the link.
Item {
    id: line

    property string title
    property string text

    Label {
        anchors.left: parent.left
        anchors.right: value.left
        anchors.rightMargin: Theme.px(6)
        anchors.verticalCenter: parent.verticalCenter
        text: line.title
        font.pixelSize: Theme.smallText - 1
        color: Theme.textDim
    }

    Label {
        id: value

        anchors.right: parent.right
        anchors.verticalCenter: parent.verticalCenter
        text: line.text
        font.pixelSize: Theme.smallText + 1
        font.weight: Font.DemiBold
    }
}
