import QtQuick 2.15

// The car with all that can stand open, and its tires. Lists are in the order front left, front right, rear
// left, rear right.
Item {
    id: car

    property var doors: []
    property var tires: []
    property bool hood: false
    property bool trunk: false

    width: 200
    height: 420

    Repeater {
        model: 4

        Tire {
            x: index % 2 === 0 ? 22 : 160
            y: index < 2 ? 72 : 312
            condition: car.tires[index] === undefined ? 3 : car.tires[index]
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
            x: isLeft ? 37 : 163
            y: index < 2 ? 150 : 234
            height: 78
            open: car.doors[index] === true
        }
    }
}
