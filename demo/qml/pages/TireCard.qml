import QtQuick 2.15
import "../controls"
import "../style"

// What the box says of one tire.
Card {
    id: card

    property string title
    property string text
    property int state: 3

    width: 150
    height: 92
    border.width: state === 1 || state === 2 ? 3 : 1
    border.color: state === 1 ? Theme.caution : state === 2 ? Theme.alarm : Theme.line

    Label {
        anchors.top: parent.top
        anchors.topMargin: 10
        anchors.horizontalCenter: parent.horizontalCenter
        text: card.title
        font.pixelSize: Theme.smallText
        color: Theme.textDim
    }

    Label {
        anchors.bottom: parent.bottom
        anchors.bottomMargin: 8
        anchors.horizontalCenter: parent.horizontalCenter
        width: Math.min(implicitWidth, parent.width - 12)
        text: card.text || "--"
        font.pixelSize: 34
        font.weight: Font.DemiBold
        color: card.state === 1 ? Theme.caution : card.state === 2 ? Theme.alarm : Theme.text
    }
}
