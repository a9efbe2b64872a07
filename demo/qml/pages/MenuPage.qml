import QtQuick 2.15
import CanBus 1.0
import "../controls"
import "../style"

// The box's own menu. How this page reads it: the identifiers are page, chosen line, number of lines and value;
// the texts are title, lines, value. A press is page, line and 0 to choose, 1 for less, 2 for more; one line
// past the last goes back.
Page {
    id: page

    readonly property var menu: MenuState.menu.length === 4 ? MenuState.menu : [0, 0, 0, 0]
    readonly property int count: Math.min(menu[2] || MenuState.texts.length - 1, MenuState.texts.length - 1)
    readonly property string value: MenuState.texts[count + 1] || ""
    readonly property bool hasValue: MenuState.minus || MenuState.plus || value !== ""

    title: MenuState.texts[0] || "Menu"
    valid: MenuState.valid
    stale: MenuState.stale

    Card {
        anchors.left: parent.left
        anchors.right: side.left
        anchors.rightMargin: Theme.gap
        anchors.top: parent.top
        anchors.bottom: parent.bottom
    }

    Column {
        id: lines

        anchors.left: parent.left
        anchors.right: side.left
        anchors.top: parent.top
        anchors.margins: Theme.margin
        anchors.rightMargin: Theme.margin + Theme.gap
        spacing: Theme.gap

        Repeater {
            model: Math.max(0, page.count)

            MenuLine {
                objectName: "line" + index
                width: lines.width
                height: Math.min(Theme.px(96), (side.height - 2 * Theme.margin + Theme.gap) / page.count - Theme.gap)
                text: MenuState.texts[index + 1] || ""
                chosen: page.menu[0] !== 0 && page.menu[1] === index
                leads: page.menu[0] === 0
                onTapped: CanBusPlayer.onMenuPress(page.menu[0], index, 0)
            }
        }
    }

    Card {
        id: side

        anchors.right: parent.right
        anchors.top: parent.top
        anchors.bottom: parent.bottom
        width: Theme.px(300)

        Column {
            anchors.fill: parent
            anchors.margins: Theme.margin
            spacing: Theme.gap

            StepButton {
                objectName: "plus"
                width: parent.width
                height: Theme.px(88)
                icon: Icons.plus
                enabled: MenuState.plus
                opacity: enabled ? 1 : 0.3
                onTapped: CanBusPlayer.onMenuPress(page.menu[0], page.menu[1], 2)
            }

            Item {
                width: parent.width
                height: parent.height - 3 * Theme.px(88) - 3 * Theme.gap

                Label {
                    anchors.centerIn: parent
                    width: parent.width
                    text: page.hasValue ? page.value : "--"
                    font.pixelSize: Theme.hugeText
                    fontSizeMode: Text.HorizontalFit
                    minimumPixelSize: Theme.titleText
                    font.weight: Font.Light
                    horizontalAlignment: Text.AlignHCenter
                    color: page.hasValue ? Theme.text : Theme.textFaint
                }
            }

            StepButton {
                objectName: "minus"
                width: parent.width
                height: Theme.px(88)
                icon: Icons.minus
                enabled: MenuState.minus
                opacity: enabled ? 1 : 0.3
                onTapped: CanBusPlayer.onMenuPress(page.menu[0], page.menu[1], 1)
            }

            LampButton {
                objectName: "back"
                width: parent.width
                height: Theme.px(88)
                text: "Back"
                icon: Icons.back
                hasLamp: false
                enabled: page.menu[0] !== 0
                opacity: enabled ? 1 : 0.3
                onTapped: CanBusPlayer.onMenuPress(page.menu[0], page.count, 0)
            }
        }
    }
}
