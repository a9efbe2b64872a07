import QtQuick 2.15
import "../style"

// A value of 0 to 255 that is dragged. While the finger is on it, it shows the finger's value; then the box's.
//
// `chosen` comes at most every 200 ms, and once more with the last value: the link takes one command at a time.
Item {
    id: bar

    property int value: -1
    property string text
    property color color: Theme.accent
    property int maximum: 255
    property int step: 5
    property int offset: 0 // added to what is read, not to what is chosen
    property int decimals: 0
    readonly property bool takesFocus: enabled && visible
    readonly property bool down: drag.pressed
    readonly property int shown: drag.pressed ? drag.at : value
    property int sent: -1

    signal chosen(int value)

    function textOf(value) {
        if (value < 0)
            return "--"
        if (maximum < 10)
            return value + " of " + maximum
        return ((offset + value) / Math.pow(10, decimals)).toFixed(decimals)
    }

    function choose(wanted) {
        drag.at = Math.max(0, Math.min(maximum, Math.round(wanted)))
        if (!pause.running)
            send()
    }

    function send() {
        if (drag.at === sent)
            return
        sent = drag.at
        chosen(sent)
        pause.restart()
    }

    // Steps that come faster than they are sent add up.
    function nudge(by) {
        const from = pause.running ? drag.at : Math.max(0, value)
        if (!pause.running)
            sent = -1
        choose(from + by)
    }

    implicitHeight: Theme.touch
    activeFocusOnTab: true
    Keys.onPressed: {
        Theme.showsFocus = true
        event.accepted = event.key === Qt.Key_Plus || event.key === Qt.Key_Minus
        if (event.accepted)
            nudge(event.key === Qt.Key_Plus ? step : -step)
    }

    Timer {
        id: pause

        interval: 200
        onTriggered: bar.send()
    }

    Label {
        anchors.left: parent.left
        anchors.top: parent.top
        height: Theme.px(24)
        text: bar.text
        font.pixelSize: Theme.smallText
        color: Theme.textDim
    }

    Label {
        anchors.right: parent.right
        anchors.top: parent.top
        height: Theme.px(24)
        text: bar.textOf(bar.shown)
        font.pixelSize: Theme.bodyText
        font.weight: Font.DemiBold
    }

    Rectangle {
        id: groove

        anchors.left: parent.left
        anchors.right: parent.right
        anchors.bottom: parent.bottom
        anchors.bottomMargin: Theme.px(10)
        height: Theme.px(16)
        radius: Theme.px(8)
        color: Theme.sunken
        border.width: Theme.px(1)
        border.color: Theme.line

        Rectangle {
            width: Math.max(parent.height, knob.x + knob.width / 2)
            height: parent.height
            radius: Theme.px(8)
            color: Theme.tinted(bar.color, 0.75)
            visible: bar.shown > 0
        }

        Rectangle {
            id: knob

            x: Math.max(0, bar.shown) / bar.maximum * (groove.width - width)
            anchors.verticalCenter: parent.verticalCenter
            width: Theme.px(30)
            height: Theme.px(30)
            radius: Theme.px(15)
            color: bar.down ? bar.color : Theme.raised
            border.width: Theme.px(3)
            border.color: bar.shown < 0 ? Theme.line : bar.color
        }
    }

    MouseArea {
        id: drag

        property int at: 0

        function valueAt(x) {
            return (x - knob.width / 2) / (groove.width - knob.width) * bar.maximum
        }

        anchors.fill: parent
        preventStealing: true
        onPressed: {
            bar.forceActiveFocus(Qt.MouseFocusReason)
            bar.sent = -1
            bar.choose(valueAt(mouse.x))
        }
        onPositionChanged: bar.choose(valueAt(mouse.x))
        onReleased: bar.send()
    }

    Rectangle {
        anchors.fill: parent
        anchors.margins: -Theme.px(4)
        visible: bar.activeFocus && Theme.showsFocus
        radius: Theme.radius
        color: "transparent"
        border.width: Theme.px(3)
        border.color: Theme.accent
    }
}
