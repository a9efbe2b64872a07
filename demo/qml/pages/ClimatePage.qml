import QtQuick 2.15
import CanBus 1.0
import "../controls"
import "../style"

Page {
    id: page

    readonly property var lamps: ClimateState.buttons

    function lamp(index) {
        return index < lamps.length ? lamps[index] : 0
    }

    title: ClimateState.title || "Climate"
    valid: ClimateState.valid
    stale: ClimateState.stale

    Item {
        anchors.fill: parent

        ClimateZone {
            id: leftZone

            objectName: "main"
            width: Theme.px(204)
            anchors.top: parent.top
            anchors.bottom: buttons.top
            anchors.bottomMargin: Theme.gap
            title: ClimateState.driverSeat ? "Passenger" : "Driver"
            temperature: ClimateState.mainTemp
            unit: ClimateState.mainUnit
            heat: ClimateState.leftHeatedSeat
            cool: ClimateState.leftCooledSeat
            plusLamp: page.lamp(12)
            minusLamp: page.lamp(13)
            seatLamp: page.lamp(19)
            on: ClimateState.systemOn
            onPlus: Climate.autoMainZoneTempPlus(isPress)
            onMinus: Climate.autoMainZoneTempMinus(isPress)
            onHeatTapped: Climate.leftHeatedSeat()
            onCoolTapped: Climate.leftCooledSeat()
        }

        AirCard {
            anchors.left: leftZone.right
            anchors.right: rightZone.left
            anchors.margins: Theme.gap
            anchors.top: parent.top
            anchors.bottom: leftZone.bottom
            anchors.bottomMargin: 0
            anchors.topMargin: 0
            lamp: page.lamp
        }

        ClimateZone {
            id: rightZone

            objectName: "second"
            width: leftZone.width
            anchors.right: parent.right
            anchors.top: parent.top
            anchors.bottom: leftZone.bottom
            title: ClimateState.driverSeat ? "Driver" : "Passenger"
            temperature: ClimateState.secondTemp
            unit: ClimateState.secondUnit
            heat: ClimateState.rightHeatedSeat
            cool: ClimateState.rightCooledSeat
            plusLamp: page.lamp(14)
            minusLamp: page.lamp(15)
            seatLamp: page.lamp(19)
            on: ClimateState.systemOn
            onPlus: Climate.autoSecondZoneTempPlus(isPress)
            onMinus: Climate.autoSecondZoneTempMinus(isPress)
            onHeatTapped: Climate.rightHeatedSeat()
            onCoolTapped: Climate.rightCooledSeat()
        }

        ClimateButtons {
            id: buttons

            anchors.left: parent.left
            anchors.right: parent.right
            anchors.bottom: parent.bottom
            lamp: page.lamp
        }
    }
}
