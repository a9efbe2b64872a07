import QtQuick 2.15
import CanBus 1.0
import CanBus.HeadUnit 1.0
import "controls"
import "style"

// Title, reverse gear, link and clock; and the way between day and night.
Rectangle {
    id: bar

    property string title

    signal nightTapped

    color: Theme.bar

    Label {
        anchors.left: parent.left
        anchors.leftMargin: Theme.px(22)
        anchors.right: things.left
        anchors.rightMargin: Theme.px(18)
        anchors.verticalCenter: parent.verticalCenter
        text: bar.title
        font.pixelSize: Theme.titleText
        font.weight: Font.DemiBold
    }

    Row {
        id: things

        anchors.right: parent.right
        anchors.rightMargin: Theme.px(20)
        height: parent.height
        spacing: Theme.px(18)

        Rectangle {
            objectName: "reverseSign"
            anchors.verticalCenter: parent.verticalCenter
            visible: Host.reverse
            width: Theme.px(44)
            height: Theme.px(40)
            radius: Theme.px(8)
            color: Theme.alarm

            Label {
                anchors.centerIn: parent
                text: "R"
                font.pixelSize: Theme.titleText
                font.weight: Font.Bold
                color: "white"
            }
        }

        Row {
            anchors.verticalCenter: parent.verticalCenter
            spacing: Theme.px(9)

            Rectangle {
                anchors.verticalCenter: parent.verticalCenter
                width: Theme.px(14)
                height: Theme.px(14)
                radius: Theme.px(7)
                color: LinkState.connected ? Theme.good : Theme.alarm
            }

            Label {
                objectName: "linkText"
                anchors.verticalCenter: parent.verticalCenter
                text: LinkState.connected ? "Connected" : "No link"
                font.pixelSize: Theme.smallText + 1
                color: LinkState.connected ? Theme.textDim : Theme.alarm
            }
        }

        PressArea {
            id: lightButton

            objectName: "night"
            width: Theme.touch
            height: parent.height
            radius: Theme.px(4)
            ringMargin: Theme.px(4)
            onTapped: bar.nightTapped()

            Rectangle {
                anchors.fill: parent
                color: lightButton.down ? Theme.down : "transparent"
            }

            Icon {
                anchors.centerIn: parent
                path: Theme.night ? Icons.sun : Icons.moon
                color: Theme.textDim
            }
        }

        Label {
            objectName: "clock"
            anchors.verticalCenter: parent.verticalCenter
            text: Host.clock
            font.pixelSize: Theme.titleText
            font.weight: Font.DemiBold
        }
    }
}
