import QtQuick 2.15
import QtQuick.Shapes 1.15
import "../style"

// A tire from above, 18 by 58, in the colour of its state.
Shape {
    id: tire

    property int condition: 3
    readonly property color neutral: Theme.night ? "#4a5a6a" : "#55616e"
    readonly property var colors: [neutral, Theme.caution, Theme.alarm, Theme.textFaint]

    width: 18
    height: 58

    Outline {
        fillColor: tire.colors[tire.condition]
        strokeColor: Theme.textFaint
        strokeWidth: tire.condition === 1 || tire.condition === 2 ? -1 : 1
        path: "M6 0 L12 0 A6 6 0 0 1 18 6 L18 52 A6 6 0 0 1 12 58 L6 58 A6 6 0 0 1 0 52 L0 6 A6 6 0 0 1 6 0 Z"
    }
}
