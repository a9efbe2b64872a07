import QtQuick 2.15
import "../car"
import "../controls"
import "../style"

// One side of the car: what is nearest there, -1 where nothing is known, and whether its sensor measures. What it
// measured before it was switched off has no colour.
Card {
    id: card

    property string title
    property int value: -1
    property bool measures: false
    readonly property int band: Distance.band(value)
    readonly property bool isNear: measures && value >= 0 && band < Distance.bands
    readonly property string text: value < 0 ? "--" : band === Distance.bands ? "Clear" : value
    readonly property color color: isNear ? Distance.color(band) : Theme.textDim

    Rectangle {
        anchors.left: parent.left
        anchors.leftMargin: Theme.px(16)
        anchors.verticalCenter: parent.verticalCenter
        width: Theme.px(10)
        height: parent.height - Theme.px(32)
        radius: Theme.px(5)
        color: card.isNear ? card.color : Theme.line
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
        text: card.text
        font.pixelSize: card.isNear ? Theme.largeText : Theme.bodyText
        font.weight: card.isNear ? Font.DemiBold : Font.Normal
        color: card.color
    }
}
