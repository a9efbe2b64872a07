import QtQuick 2.15
import "../controls"
import "../style"

// One of the four small gauges.
PressArea {
    id: gauge

    property int value: -1
    property int zero: 0
    property string title
    property string valueText

    radius: Theme.radius + 4

    Card {
        anchors.fill: parent
        color: gauge.down ? Theme.down : Theme.surface
        border.color: gauge.down ? Theme.accent : Theme.night ? "transparent" : Theme.line
    }

    Label {
        id: titleText

        anchors.top: parent.top
        anchors.topMargin: 10
        anchors.horizontalCenter: parent.horizontalCenter
        width: Math.min(implicitWidth, parent.width - 16)
        text: gauge.title
        font.pixelSize: Theme.bodyText
        color: Theme.textDim
    }

    Dial {
        id: dial

        anchors.top: titleText.bottom
        anchors.topMargin: 6
        anchors.horizontalCenter: parent.horizontalCenter
        width: Math.min(parent.width - 24, parent.height - titleText.height - 20)
        height: width
        thickness: 13
        value: gauge.value
        zero: gauge.zero
    }

    Label {
        anchors.centerIn: dial
        width: Math.min(implicitWidth, dial.width - 40)
        text: gauge.valueText || (gauge.value < 0 ? "--" : gauge.value)
        font.pixelSize: 27
        fontSizeMode: Text.HorizontalFit
        minimumPixelSize: 18
        font.weight: Font.DemiBold
        horizontalAlignment: Text.AlignHCenter
    }
}
