import QtQuick 2.15
import "../controls"
import "../style"

// Where the air comes out: the windscreen, the face, the feet. The demo reads the position as a sum of
// 4, 2 and 1 of them; 8 is all by itself.
PressArea {
    id: button

    property int position: 0
    property int lamp: 0
    readonly property var places: [
        { "text": "Screen", "bit": 4, "path": "M3 17 C4 9 10 4 20 4 M13 19 C10 16 15 13 12 9 M18 19 C15 16 20 13 17 9" },
        { "text": "Face", "bit": 2, "path": "M4 8 A3 3 0 1 0 10 8 A3 3 0 1 0 4 8 M7 13 L7 21 M22 9 L13 9 M16.5 5.5 L13 9 L16.5 12.5" },
        { "text": "Feet", "bit": 1, "path": "M4 3 L4 12 L12 12 L12 20 L17 20 M20 3 L20 14 M16.5 10.5 L20 14 L23.5 10.5" }
    ]

    function isOpen(bit) {
        return position === 8 || (position > 0 && (position & bit) !== 0)
    }

    Face {
        down: button.down
        border.color: button.down ? Theme.accent : button.lamp > 0 ? Theme.lamp(button.lamp) : Theme.line
    }

    Row {
        anchors.centerIn: parent
        spacing: Theme.px(4)

        Repeater {
            model: button.places

            Column {
                readonly property bool open: button.isOpen(modelData.bit)

                width: (button.width - Theme.px(24)) / 3
                spacing: Theme.px(3)

                Icon {
                    anchors.horizontalCenter: parent.horizontalCenter
                    path: modelData.path
                    size: Theme.px(30)
                    color: parent.open ? Theme.accent : Theme.textFaint
                }

                Label {
                    anchors.horizontalCenter: parent.horizontalCenter
                    text: modelData.text
                    font.pixelSize: Theme.smallText
                    color: parent.open ? Theme.text : Theme.textDim
                }
            }
        }
    }
}
