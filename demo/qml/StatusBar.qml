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
        anchors.leftMargin: 22
        anchors.right: things.left
        anchors.verticalCenter: parent.verticalCenter
        text: bar.title
        font.pixelSize: Theme.titleText
        font.weight: Font.DemiBold
    }

    Row {
        id: things

        anchors.right: parent.right
        anchors.rightMargin: 20
        height: parent.height
        spacing: 18

        Rectangle {
            objectName: "reverseSign"
            anchors.verticalCenter: parent.verticalCenter
            visible: Host.reverse
            width: 44
            height: 40
            radius: 8
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
            spacing: 9

            Rectangle {
                anchors.verticalCenter: parent.verticalCenter
                width: 14
                height: 14
                radius: 7
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
            radius: 4
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
