import QtQuick 2.15
import CanBus.HeadUnit 1.0
import "../controls"

// A value of the simulated car, for one or more fields of the box.
DragBar {
    id: slider

    property var fields: []

    function tell(position) {
        Box.send(fields.map(field => field + "=" + (offset + position)).join(" "))
    }

    onChosen: {
        slider.value = value
        tell(value)
    }
    Component.onCompleted: tell(value)
}
