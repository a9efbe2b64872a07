import QtQuick 2.15
import CanBus.HeadUnit 1.0
import "../controls"
import "../style"

// A switch of the simulated car, for one or more fields of the box.
LampButton {
    id: toggle

    property var fields: []
    property string onValue: "true"
    property string offValue: "false"
    property bool on: false

    function tell() {
        Box.send(fields.map(field => field + "=" + (on ? onValue : offValue)).join(" "))
    }

    height: Theme.touch
    lamp: on ? 1 : 0
    onTapped: {
        on = !on
        tell()
    }
    Component.onCompleted: tell()
}
