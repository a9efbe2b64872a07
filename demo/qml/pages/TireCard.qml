import QtQuick 2.15
import "../controls"
import "../style"

// What the box says of one tire.
Card {
    id: card

    property string title
    property string text
    property int condition: 3

    width: Theme.px(150)
    height: Theme.px(92)
    border.width: condition === 1 || condition === 2 ? Theme.px(3) : Theme.px(1)
    border.color: condition === 1 ? Theme.caution : condition === 2 ? Theme.alarm : Theme.line

    Label {
        anchors.top: parent.top
        anchors.topMargin: Theme.px(10)
        anchors.horizontalCenter: parent.horizontalCenter
        text: card.title
        font.pixelSize: Theme.smallText
        color: Theme.textDim
    }

    Label {
        anchors.bottom: parent.bottom
        anchors.bottomMargin: Theme.px(8)
        anchors.horizontalCenter: parent.horizontalCenter
        width: parent.width - Theme.px(12)
        height: Theme.px(44)
        text: card.text || "--"
        font.pixelSize: card.text.length < 7 ? Theme.px(34) : card.text.length < 12 ? Theme.px(22) : Theme.smallText
        horizontalAlignment: Text.AlignHCenter
        wrapMode: Text.WordWrap
        font.weight: Font.DemiBold
        color: card.condition === 1 ? Theme.caution : card.condition === 2 ? Theme.alarm : Theme.text
    }
}
