import QtQuick 2.15
import "../style"

// What can be pressed, by finger or with Enter: the base of all controls.
//
// `began` and `ended` come in pairs, whatever ends the touch, the page's going among it; `tapped` comes with a touch
// that ends where it began.
Item {
    id: area

    property bool down: mouse.pressed || keyIsDown
    property bool keyIsDown: false
    property bool isHeld: false // has begun and not ended
    property int radius: Theme.radius
    property int ringMargin: -Theme.px(4) // of the frame that shows the focus
    readonly property bool takesFocus: enabled && visible

    signal began
    signal ended
    signal tapped

    function begin() {
        if (isHeld)
            return
        isHeld = true
        began()
    }

    function end() {
        if (!isHeld)
            return
        isHeld = false
        ended()
    }

    function releaseKey() {
        if (!keyIsDown)
            return
        keyIsDown = false
        end()
    }

    implicitWidth: Theme.touch
    implicitHeight: Theme.touch
    activeFocusOnTab: true
    onActiveFocusChanged: if (!activeFocus) releaseKey()
    onEnabledChanged: if (!enabled) releaseKey()
    // A page that goes under a finger hears no more of it.
    Component.onDestruction: end()

    Keys.onPressed: {
        Theme.showsFocus = true // Tab goes no further than here
        const isPress = [Qt.Key_Return, Qt.Key_Enter, Qt.Key_Space].indexOf(event.key) >= 0
        event.accepted = isPress
        if (!isPress || event.isAutoRepeat)
            return
        keyIsDown = true
        begin()
    }
    Keys.onReleased: {
        const isPress = [Qt.Key_Return, Qt.Key_Enter, Qt.Key_Space].indexOf(event.key) >= 0
        event.accepted = isPress
        if (!isPress || event.isAutoRepeat || !keyIsDown)
            return
        releaseKey()
        tapped()
    }

    MouseArea {
        id: mouse

        anchors.fill: parent
        onPressed: {
            area.forceActiveFocus(Qt.MouseFocusReason)
            area.begin()
        }
        onReleased: {
            area.end()
            if (containsMouse)
                area.tapped()
        }
        onCanceled: area.end()
    }

    Rectangle {
        anchors.fill: parent
        anchors.margins: area.ringMargin
        z: 10
        objectName: "focusRing"
        visible: area.activeFocus && Theme.showsFocus
        radius: Math.max(Theme.px(6), area.radius - area.ringMargin)
        color: "transparent"
        border.width: Theme.px(3)
        border.color: Theme.accent
    }
}
