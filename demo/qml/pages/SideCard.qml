import QtQuick 2.15
import "../car"
import "../controls"
import "../style"

// One side of the car: what is nearest there, and whether its sensor measures.
Card {
    id: card

    property string title
    property int value: 255
    property bool measures: false
    readonly property int band: Distance.band(value)
    readonly property bool isClear: band === Distance.bands

    Rectangle {
        anchors.left: parent.left
        anchors.leftMargin: Theme.px(16)
        anchors.verticalCenter: parent.verticalCenter
        width: Theme.px(10)
        height: parent.height - Theme.px(32)
        radius: Theme.px(5)
        color: card.isClear ? Theme.line : Distance.color(card.band)
    }

    Column {
        anchors.left: parent.left
        anchors.leftMargin: Theme.px(42)
        anchors.verticalCenter: parent.verticalCenter
        spacing: Theme.px(2)

        Label {
            text: card.title
            font.weight: Font.DemiBold
        }

        Label {
            text: card.measures ? "Measuring" : "Off"
            font.pixelSize: Theme.smallText
            color: card.measures ? Theme.good : Theme.textDim
        }
    }

    Label {
        anchors.right: parent.right
        anchors.rightMargin: Theme.px(20)
        anchors.verticalCenter: parent.verticalCenter
        text: card.isClear ? "Clear" : card.value
        font.pixelSize: card.isClear ? Theme.bodyText : Theme.largeText
        font.weight: card.isClear ? Font.Normal : Font.DemiBold
        color: card.isClear ? Theme.textDim : Distance.color(card.band)
    }
}
