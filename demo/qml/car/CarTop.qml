import QtQuick 2.15
import "../style"

// The car with all that can stand open, and its tires. Lists are in the order front left, front right, rear
// left, rear right.
Item {
    id: car

    property var doors: []
    property var tires: []
    property bool hood: false
    property bool trunk: false

    function tireColor(state) {
        return [Theme.night ? "#4a5a6a" : "#55616e", Theme.caution, Theme.alarm, Theme.textFaint][state === undefined ? 3
                                                                                                                 : state]
    }

    width: 200
    height: 420

    Repeater {
        model: 4

        Rectangle {
            readonly property int state: car.tires[index] === undefined ? 3 : car.tires[index]

            x: index % 2 === 0 ? 22 : 160
            y: index < 2 ? 72 : 312
            width: 18
            height: 58
            radius: 6
            color: car.tireColor(state)
            border.width: state === 1 || state === 2 ? 0 : 1
            border.color: Theme.textFaint
        }
    }

    CarBody {
        hood: car.hood
        trunk: car.trunk
    }

    Repeater {
        model: 4

        Door {
            isLeft: index % 2 === 0
            x: isLeft ? 33 : 158
            y: index < 2 ? 150 : 234
            height: 78
            open: car.doors[index] === true
        }
    }
}
