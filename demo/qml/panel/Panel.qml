import QtQuick 2.15
import CanBus.HeadUnit 1.0
import "../controls"
import "../style"

// The control panel that plays the simulated car. What it shows is what it has told the box; it begins with a
// car that stands closed and without faults.
Rectangle {
    id: panel

    readonly property var doors: ["Front left", "Front right", "Rear left", "Rear right"]

    width: Theme.px(560)
    height: column.height + 2 * Theme.margin
    color: Theme.background

    Column {
        id: column

        x: Theme.margin
        y: Theme.margin
        width: panel.width - 2 * Theme.margin
        spacing: Theme.gap

        PanelSection {
            id: doorSection

            width: column.width
            title: "Open"
            columns: 3

            Repeater {
                model: panel.doors

                PanelToggle {
                    objectName: "door" + (index + 1)
                    width: doorSection.cell
                    text: modelData
                    fields: ["vehicle.door." + (index + 1)]
                    onValue: "open"
                    offValue: "closed"
                }
            }

            PanelToggle {
                objectName: "hood"
                width: doorSection.cell
                text: "Hood"
                fields: ["vehicle.hood"]
                onValue: "open"
                offValue: "closed"
            }

            PanelToggle {
                objectName: "trunk"
                width: doorSection.cell
                text: "Trunk"
                fields: ["vehicle.trunk"]
                onValue: "open"
                offValue: "closed"
            }
        }

        PanelSection {
            id: driveSection

            width: column.width
            title: "Driving"
            columns: 2

            PanelToggle {
                objectName: "reverse"
                width: driveSection.cell
                text: "Reverse gear"
                fields: [1, 2, 3, 4].map(sensor => "parking.sensor." + sensor)
            }

            PanelValue {
                objectName: "distance"
                width: driveSection.cell
                text: "Distance behind"
                value: 200
                fields: [1, 2, 3, 4].map(zone => "parking.rear." + zone)
            }

            PanelValue {
                objectName: "speed"
                width: driveSection.cell
                text: "Speed, km/h"
                maximum: 200
                value: 0
                fields: ["measured.speed"]
            }

            PanelValue {
                objectName: "engineSpeed"
                width: driveSection.cell
                text: "Engine, 1/min"
                maximum: 5000
                step: 100
                value: 850
                fields: ["measured.engineSpeed"]
            }

            PanelValue {
                objectName: "coolant"
                width: driveSection.cell
                text: "Coolant, °C"
                maximum: 150
                value: 90
                fields: ["measured.coolant"]
            }

            PanelValue {
                objectName: "cabin"
                width: driveSection.cell
                text: "Cabin, °C"
                offset: 160
                decimals: 1
                maximum: 140
                value: 55
                fields: ["climate.mainTemp"]
            }
        }

        PanelSection {
            id: faultSection

            width: column.width
            title: "Faults"
            columns: 3

            PanelToggle {
                objectName: "tire"
                width: faultSection.cell
                text: "Soft tire"
                fields: ["vehicle.tire.3"]
                onValue: "2"
                offValue: "0"
            }

            PanelToggle {
                objectName: "engine"
                width: faultSection.cell
                text: "Check engine"
                fields: ["vehicle.checkEngine"]
                onValue: "1"
                offValue: "0"
            }

            PanelToggle {
                objectName: "battery"
                width: faultSection.cell
                text: "Battery"
                fields: ["vehicle.battery"]
            }

            PanelToggle {
                objectName: "answers"
                width: faultSection.cell
                text: "Answers get lost"
                fields: ["fault.dropAnswers"]
                onValue: "0.4"
                offValue: "0"
            }

            PanelToggle {
                objectName: "noise"
                width: faultSection.cell
                text: "Noise"
                fields: ["fault.noise"]
                onValue: "100"
                offValue: "0"
            }

            LampButton {
                objectName: "restart"
                width: faultSection.cell
                height: Theme.touch
                text: "Box restarts"
                hasLamp: false
                onTapped: Box.send("restart")
            }
        }

        PanelToggle {
            objectName: "silence"
            width: column.width
            height: Theme.px(76)
            text: on ? "The box does not answer" : "The box stops answering"
            icon: Icons.warning
            lamp: on ? 3 : 0
            fields: ["fault.silence"]
        }
    }
}
