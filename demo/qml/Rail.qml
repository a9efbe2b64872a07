import QtQuick 2.15
import CanBus 1.0
import "controls"
import "style"

// The pages that the box has something for, and the link's, which needs no box.
Rectangle {
    id: rail

    property string current
    readonly property var pages: [
        { "name": "climate", "text": "Climate", "icon": Icons.climate },
        { "name": "gauges", "text": "Gauges", "icon": Icons.gauges },
        { "name": "vehicle", "text": "Vehicle", "icon": Icons.vehicle },
        { "name": "parking", "text": "Parking", "icon": Icons.parking },
        { "name": "menu", "text": "Menu", "icon": Icons.menu },
        { "name": "link", "text": "Link", "icon": Icons.link }
    ]

    signal chosen(string name)

    // Until the box has said what it supports, everything is offered.
    function isOffered(name) {
        return name === "link" || !ScreensState.valid || ScreensState[name]
    }

    color: Theme.bar

    Column {
        Repeater {
            model: rail.pages

            RailButton {
                objectName: modelData.name + "Tab"
                width: rail.width
                height: rail.height / rail.pages.length
                visible: rail.isOffered(modelData.name)
                icon: modelData.icon
                text: modelData.text
                current: rail.current === modelData.name
                onTapped: rail.chosen(modelData.name)
            }
        }
    }
}
