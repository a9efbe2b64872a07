import QtQuick 2.15
import "../controls"
import "../style"

// One side of the car: its temperature and its seat.
Card {
    id: zone

    property string title
    property int temperature: -1
    property int unit: -1
    property int heat: 0
    property int cool: 0
    property int plusLamp: 0
    property int minusLamp: 0
    property int seatLamp: 0
    property bool on: true

    signal plus(bool isPress)
    signal minus(bool isPress)
    signal heatTapped
    signal coolTapped

    function unitText(unit) {
        return unit === 0 ? "°C" : unit === 1 ? "°F" : "°"
    }

    Label {
        id: titleText

        anchors.top: parent.top
        anchors.topMargin: Theme.px(8)
        anchors.horizontalCenter: parent.horizontalCenter
        text: zone.title
        color: Theme.textDim
        font.pixelSize: Theme.smallText
    }

    StepButton {
        id: plusButton

        objectName: "plus"
        anchors.top: titleText.bottom
        anchors.topMargin: Theme.px(6)
        x: Theme.px(12)
        width: parent.width - Theme.px(24)
        icon: Icons.plus
        lamp: zone.plusLamp
        onBegan: zone.plus(true)
        onEnded: zone.plus(false)
    }

    Item {
        anchors.top: plusButton.bottom
        anchors.bottom: minusButton.top
        anchors.left: parent.left
        anchors.right: parent.right

        Row {
            anchors.centerIn: parent
            spacing: Theme.px(3)

            Label {
                id: number

                text: zone.temperature < 0 ? "--" : (zone.temperature / 10).toFixed(1)
                font.pixelSize: text.length < 6 ? Theme.hugeText : Theme.px(48)
                font.weight: Font.Light
                color: zone.on ? Theme.text : Theme.textFaint
            }

            Label {
                anchors.top: number.top
                anchors.topMargin: Theme.px(11)
                text: zone.temperature < 0 ? "" : zone.unitText(zone.unit)
                font.pixelSize: Theme.bodyText
                color: Theme.textDim
            }
        }
    }

    StepButton {
        id: minusButton

        objectName: "minus"
        anchors.bottom: seat.top
        anchors.bottomMargin: Theme.px(10)
        x: Theme.px(12)
        width: parent.width - Theme.px(24)
        icon: Icons.minus
        lamp: zone.minusLamp
        onBegan: zone.minus(true)
        onEnded: zone.minus(false)
    }

    Row {
        id: seat

        anchors.bottom: parent.bottom
        anchors.bottomMargin: Theme.px(12)
        x: Theme.px(12)
        spacing: Theme.gap

        SeatButton {
            objectName: "heat"
            width: (zone.width - Theme.px(24) - Theme.gap) / 2
            height: Theme.px(72)
            icon: Icons.seatHeat
            level: zone.heat
            color: Theme.warm
            onTapped: zone.heatTapped()
        }

        SeatButton {
            objectName: "cool"
            width: (zone.width - Theme.px(24) - Theme.gap) / 2
            height: Theme.px(72)
            icon: Icons.seatCool
            level: zone.cool
            color: Theme.cool
            onTapped: zone.coolTapped()
        }
    }

    Rectangle {
        readonly property int lamp: zone.seatLamp

        objectName: "seatLamp"
        anchors.centerIn: seat
        width: Theme.px(4)
        height: Theme.px(40)
        radius: Theme.px(2)
        color: Theme.lamp(lamp)
    }
}
