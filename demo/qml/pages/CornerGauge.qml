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

    radius: Theme.radius + Theme.px(4)

    Card {
        anchors.fill: parent
        color: gauge.down ? Theme.down : Theme.surface
        border.color: gauge.down ? Theme.accent : Theme.night ? "transparent" : Theme.line
    }

    Label {
        id: titleText

        anchors.top: parent.top
        anchors.topMargin: Theme.px(10)
        anchors.horizontalCenter: parent.horizontalCenter
        width: Math.min(implicitWidth, parent.width - Theme.px(16))
        text: gauge.title
        font.pixelSize: Theme.bodyText
        color: Theme.textDim
    }

    Dial {
        id: dial

        anchors.top: titleText.bottom
        anchors.topMargin: 0
        anchors.horizontalCenter: parent.horizontalCenter
        width: Math.min(parent.width - Theme.px(12), parent.height - titleText.height - Theme.px(8))
        height: width
        thickness: Theme.px(13)
        value: gauge.value
        zero: gauge.zero
    }

    // As wide as it may be, whatever the text: a size that followed it would cost a second frame.
    Label {
        anchors.centerIn: dial
        width: dial.width - Theme.px(44)
        text: gauge.valueText || (gauge.value < 0 ? "--" : gauge.value)
        font.pixelSize: text.length > 8 ? Theme.px(19) : Theme.px(26)
        font.weight: Font.DemiBold
        horizontalAlignment: Text.AlignHCenter
    }
}
