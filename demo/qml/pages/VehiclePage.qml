import QtQuick 2.15
import CanBus 1.0
import "../car"
import "../controls"
import "../style"

Page {
    id: page

    readonly property var places: ["Front left", "Front right", "Rear left", "Rear right"]
    // Texts may have arrived, and nothing of the car's state yet.
    readonly property bool known: VehicleState.doors.length > 0

    title: VehicleState.title || "Vehicle"
    valid: VehicleState.valid
    stale: VehicleState.stale

    Card {
        id: stage

        anchors.left: parent.left
        anchors.right: list.left
        anchors.rightMargin: Theme.gap
        anchors.top: parent.top
        anchors.bottom: buttons.top
        anchors.bottomMargin: Theme.gap

        CarTop {
            anchors.centerIn: parent
            scale: Theme.unit
            doors: VehicleState.doors
            tires: VehicleState.tires
            hood: VehicleState.hood
            trunk: VehicleState.trunk
        }

        Repeater {
            model: page.places

            TireCard {
                x: index % 2 === 0 ? Theme.margin : stage.width - width - Theme.margin
                y: index < 2 ? Theme.px(34) : stage.height - height - Theme.px(34)
                title: modelData
                text: VehicleState.tireTexts[index] || ""
                condition: VehicleState.tires[index] === undefined ? 3 : VehicleState.tires[index]
            }
        }
    }

    Card {
        id: list

        anchors.right: parent.right
        anchors.top: parent.top
        anchors.bottom: stage.bottom
        width: Theme.px(318)

        Column {
            anchors.verticalCenter: parent.verticalCenter
            x: Theme.px(20)
            width: parent.width - Theme.px(40)
            spacing: Theme.px(3)

            StatusLine {
                objectName: "engineLine"
                width: parent.width
                title: "Engine"
                icon: Icons.engine
                text: page.known ? ["OK", "Check", "Service", "State 3"][VehicleState.checkEngine] : "--"
                color: !page.known ? Theme.textFaint
                                   : VehicleState.checkEngine === 0 ? Theme.good
                                                                    : Theme.lamp(VehicleState.checkEngine + 1)
            }

            StatusLine {
                objectName: "batteryLine"
                width: parent.width
                title: "Battery"
                icon: Icons.battery
                text: !page.known ? "--" : VehicleState.battery ? "Check" : "OK"
                color: !page.known ? Theme.textFaint : VehicleState.battery ? Theme.alarm : Theme.good
            }

            Rectangle {
                width: parent.width
                height: 1
                color: Theme.line
            }

            Repeater {
                model: page.places

                OpenLine {
                    objectName: "doorLine" + index
                    width: parent.width
                    title: modelData + " door"
                    known: page.known
                    open: VehicleState.doors[index] === true
                }
            }

            OpenLine {
                objectName: "hoodLine"
                width: parent.width
                title: "Hood"
                known: page.known
                open: VehicleState.hood
            }

            OpenLine {
                objectName: "trunkLine"
                width: parent.width
                title: "Trunk"
                known: page.known
                open: VehicleState.trunk
            }
        }
    }

    LampButton {
        id: engine

        objectName: "checkEngine"
        anchors.left: parent.left
        anchors.bottom: parent.bottom
        width: (parent.width - 3 * Theme.gap) / 4
        height: buttons.height
        text: "Check engine"
        icon: Icons.engine
        lamp: VehicleState.checkEngine === 0 ? 0 : VehicleState.checkEngine + 1
        onTapped: Vehicle.checkEngine()
    }

    CustomRow {
        id: buttons

        anchors.left: engine.right
        anchors.leftMargin: Theme.gap
        anchors.right: parent.right
        anchors.bottom: parent.bottom
        height: Theme.px(72)
        labels: VehicleState.labels
        state1: VehicleState.labelState1
        state2: VehicleState.labelState2
        onControl1: Vehicle.customControl1()
        onControl2: Vehicle.customControl2()
        onSettings: Vehicle.settings()
    }
}
