import QtQuick 2.15
import CanBus 1.0
import "../controls"
import "../style"

// The two rows of buttons below. Each is named by the operation that it calls.
Grid {
    id: grid

    property var lamp // function: the state of a lamp by its number
    readonly property var rows: [
        { "name": "autoBtn", "text": "Auto", "icon": Icons.automatic, "lamp": 2 },
        { "name": "acBtn", "text": "A/C", "icon": Icons.snow, "lamp": 5 },
        { "name": "maxACBtn", "text": "Max A/C", "icon": Icons.snowMax, "lamp": 6 },
        { "name": "dualBtn", "text": "Dual", "icon": Icons.dual, "lamp": 4 },
        { "name": "recircFresh", "text": "Recirculate", "icon": Icons.recirculate, "lamp": 3 },
        { "name": "rearZone", "text": "Rear zone", "icon": Icons.rearZone, "lamp": 1, "held": true },
        { "name": "frontDefroster", "text": "Front defrost", "icon": Icons.frontDefrost, "lamp": 7 },
        { "name": "rearDefroster", "text": "Rear defrost", "icon": Icons.rearDefrost, "lamp": 8 },
        { "name": "heatedSteerWheel", "text": "Heated wheel", "icon": Icons.wheelHeat, "lamp": 11 },
        { "name": "customControl1", "label": 0, "icon": Icons.custom, "lamp": 9 },
        { "name": "customControl2", "label": 1, "icon": Icons.custom, "lamp": 10 },
        { "name": "settings", "text": "Settings", "icon": Icons.settings }
    ]

    columns: 6
    spacing: Theme.gap

    Repeater {
        model: grid.rows

        LampButton {
            readonly property bool held: modelData.held === true

            objectName: modelData.name
            width: (grid.width - 5 * Theme.gap) / 6
            height: Theme.px(72)
            text: modelData.text || ClimateState.labels[modelData.label] || "Custom " + (modelData.label + 1)
            icon: modelData.icon
            hasLamp: modelData.lamp !== undefined
            lamp: hasLamp ? grid.lamp(modelData.lamp) : 0
            onBegan: if (held) Climate[modelData.name](true)
            onEnded: if (held) Climate[modelData.name](false)
            onTapped: if (!held) Climate[modelData.name]()
        }
    }
}
