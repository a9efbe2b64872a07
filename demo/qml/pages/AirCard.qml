import QtQuick 2.15
import CanBus 1.0
import "../controls"
import "../style"

// The air that both sides share: power, vents, fan, flow, and the temperature of a manual system.
Card {
    id: card

    property var lamp // function: the state of a lamp by its number
    readonly property real rowHeight: (height - 2 * Theme.margin - 3 * Theme.gap) / 4

    Column {
        anchors.fill: parent
        anchors.margins: Theme.margin
        spacing: Theme.gap

        Item {
            width: parent.width
            height: card.rowHeight

            LampButton {
                objectName: "onOff"
                width: Theme.px(104)
                height: parent.height
                icon: Icons.power
                text: ClimateState.systemOn ? "On" : "Off"
                lamp: card.lamp(0)
                onTapped: Climate.onOff()
            }

            VentButton {
                objectName: "ventPos"
                anchors.right: parent.right
                width: parent.width - Theme.px(104) - Theme.gap
                height: parent.height
                position: ClimateState.ventPosition
                lamp: card.lamp(18)
                onTapped: Climate.ventPos()
            }
        }

        StepRow {
            width: parent.width
            height: card.rowHeight
            name: "fan"
            text: "Fan speed"
            maximum: 3
            step: 1
            value: ClimateState.fanSpeedStatus
            color: Theme.accent
            plusLamp: card.lamp(16)
            minusLamp: card.lamp(17)
            onPlus: Climate.fanSpeedUp(isPress)
            onMinus: Climate.fanSpeedDown(isPress)
            onChosen: Climate.manualFanSpeed(value)
        }

        StepRow {
            width: parent.width
            height: card.rowHeight
            name: "manualTemp"
            text: "Manual temperature"
            value: ClimateState.manualTemp
            color: Theme.warm
            onPlus: Climate.manualMainZoneTempUp(isPress)
            onMinus: Climate.manualMainZoneTempDown(isPress)
            onChosen: Climate.manualTemp(value)
        }

        DragBar {
            objectName: "autoFanDirectValue"
            width: parent.width
            height: card.rowHeight
            text: "Air flow"
            value: ClimateState.fanDirectValue
            color: ClimateState.fanDirect > 0 ? Theme.lamp(ClimateState.fanDirect) : Theme.accent
            onChosen: Climate.autoFanDirectValue(value)
        }
    }
}
