import QtQuick 2.15
import "../controls"
import "../style"

// The large gauge: scale, zero position, value in the peak's colour, and the shift light above.
PressArea {
    id: gauge

    property int value: -1
    property int zero: 0
    property var scaleTexts: []
    property var texts: []
    property string valueText
    property int peak: 0
    property bool shift: false
    readonly property color peakColor: Theme.peak(peak)
    readonly property real labelRadius: dial.width / 2 - 1.4 * dial.thickness - Theme.px(25)
    readonly property string number: valueText.split(" ")[0]

    radius: Theme.radius + Theme.px(4)

    Card {
        anchors.fill: parent
        color: gauge.down ? Theme.down : Theme.surface
        border.color: gauge.down ? Theme.accent : Theme.night ? "transparent" : Theme.line
    }

    ShiftLight {
        anchors.top: parent.top
        anchors.topMargin: Theme.px(14)
        anchors.horizontalCenter: parent.horizontalCenter
        level: gauge.peak
        on: gauge.shift
    }

    Dial {
        id: dial

        anchors.horizontalCenter: parent.horizontalCenter
        anchors.bottom: parent.bottom
        anchors.bottomMargin: -Theme.px(10)
        width: Math.min(parent.width - Theme.px(24), parent.height - Theme.px(32))
        height: width
        thickness: Theme.px(24)
        value: gauge.value
        zero: gauge.zero
        color: gauge.peakColor
    }

    Repeater {
        model: gauge.scaleTexts

        Label {
            readonly property real angle: dial.angleOf(255 * index / Math.max(1, gauge.scaleTexts.length - 1)) * Math.PI
                                          / 180

            x: dial.x + dial.width / 2 + Math.cos(angle) * gauge.labelRadius - width / 2
            y: dial.y + dial.height / 2 + Math.sin(angle) * gauge.labelRadius - height / 2
            text: modelData
            font.pixelSize: Theme.smallText
            color: Theme.textDim
        }
    }

    Column {
        anchors.centerIn: dial
        anchors.verticalCenterOffset: Theme.px(4)
        width: dial.width * 0.5

        Label {
            width: parent.width
            text: gauge.texts[0] || ""
            font.pixelSize: Theme.bodyText
            fontSizeMode: Text.HorizontalFit
            minimumPixelSize: Theme.px(14)
            color: Theme.textDim
            horizontalAlignment: Text.AlignHCenter
        }

        Label {
            width: parent.width
            text: gauge.number || (gauge.value < 0 ? "--" : gauge.value)
            font.pixelSize: Theme.px(78)
            font.weight: Font.Light
            horizontalAlignment: Text.AlignHCenter
        }

        Label {
            width: parent.width
            text: gauge.texts[1] || ""
            font.pixelSize: Theme.bodyText
            color: Theme.textDim
            horizontalAlignment: Text.AlignHCenter
        }
    }
}
