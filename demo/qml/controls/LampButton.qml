import QtQuick 2.15
import "../style"

// A button with an icon, a text and a lamp of four states.
PressArea {
    id: button

    property string icon
    property string text
    property int lamp: 0
    property bool hasLamp: true
    readonly property color lampColor: Theme.lamp(lamp)

    Face {
        down: button.down
        color: button.down ? Theme.down
                           : button.hasLamp && button.lamp > 0 ? Qt.tint(Theme.raised, Theme.tinted(button.lampColor, 0.16))
                                                               : Theme.raised
    }

    Column {
        anchors.centerIn: parent
        anchors.verticalCenterOffset: button.hasLamp ? -Theme.px(4) : 0
        spacing: Theme.px(3)

        Icon {
            anchors.horizontalCenter: parent.horizontalCenter
            visible: button.icon !== ""
            path: button.icon
            size: Theme.px(26)
            color: button.hasLamp && button.lamp > 0 ? button.lampColor : Theme.text
        }

        Label {
            anchors.horizontalCenter: parent.horizontalCenter
            width: button.width - Theme.px(10)
            visible: text !== ""
            text: button.text
            font.pixelSize: Theme.smallText
            fontSizeMode: Text.HorizontalFit
            minimumPixelSize: Theme.px(13)
            horizontalAlignment: Text.AlignHCenter
        }
    }

    Rectangle {
        anchors.bottom: parent.bottom
        anchors.bottomMargin: Theme.px(6)
        anchors.horizontalCenter: parent.horizontalCenter
        visible: button.hasLamp
        width: Math.min(Theme.px(44), parent.width * 0.4)
        height: Theme.px(4)
        radius: Theme.px(2)
        color: button.lampColor
    }
}
