import QtQuick 2.15
import "../style"

// A value between its minus and its plus.
Row {
    id: row

    property string name
    property alias text: bar.text
    property alias value: bar.value
    property alias maximum: bar.maximum
    property alias step: bar.step
    property alias color: bar.color
    property alias plusLamp: plusButton.lamp
    property alias minusLamp: minusButton.lamp
    property int stepWidth: Theme.px(76)

    signal plus(bool isPress)
    signal minus(bool isPress)
    signal chosen(int value)

    spacing: Theme.px(18)

    StepButton {
        id: minusButton

        objectName: row.name + "Minus"
        width: row.stepWidth
        height: parent.height
        icon: Icons.minus
        onBegan: row.minus(true)
        onEnded: row.minus(false)
    }

    DragBar {
        id: bar

        objectName: row.name
        width: row.width - 2 * (row.stepWidth + row.spacing)
        height: parent.height
        onChosen: row.chosen(value)
    }

    StepButton {
        id: plusButton

        objectName: row.name + "Plus"
        width: row.stepWidth
        height: parent.height
        icon: Icons.plus
        onBegan: row.plus(true)
        onEnded: row.plus(false)
    }
}
