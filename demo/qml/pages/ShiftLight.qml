import QtQuick 2.15
import "../style"

// A row of lights that fills up with the peak's state, and is wholly lit when it is time to shift.
Row {
    id: lights

    property int level: 0
    property bool on: false
    readonly property int count: 7

    spacing: Theme.px(6)

    Repeater {
        model: lights.count

        Rectangle {
            width: Theme.px(30)
            height: Theme.px(12)
            radius: Theme.px(6)
            color: lights.on ? Theme.alarm : index <= lights.level ? Theme.peak(index) : Theme.line
        }
    }
}
