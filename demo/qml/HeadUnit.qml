import QtQuick 2.15
import QtQuick.Window 2.15
import CanBus 1.0
import CanBus.HeadUnit 1.0
import "style"
import "focus.js" as Focus

// The whole screen.
FocusScope {
    id: unit

    property string page: "climate"
    property bool night: true
    property string pageBefore
    readonly property bool parkingIsOffered: rail.isOffered("parking")
    // Everything that the box has to tell has arrived.
    readonly property bool filled: LinkState.connected && ScreensState.valid && ClimateState.valid && MenuState.valid
                                   && ClimateState.buttons.length > 0 && GaugesState.valueTexts.length > 0
                                   && GaugesState.scale.length > 0 && VehicleState.tireTexts.length > 0
                                   && ParkingState.sensors.length > 0
    readonly property bool measures: ParkingState.sensors.indexOf(true) >= 0

    function show(name) {
        if (!rail.isOffered(name))
            return
        page = name
    }

    function leaveUnoffered() {
        if (!rail.isOffered(page))
            page = rail.pages.find(entry => rail.isOffered(entry.name)).name
    }

    function followGear() {
        if (Host.reverse && parkingIsOffered && page !== "parking") {
            pageBefore = page
            page = "parking"
        } else if (!Host.reverse && pageBefore !== "") {
            if (page === "parking")
                page = pageBefore
            pageBefore = ""
        }
    }

    function moveFocus(dx, dy) {
        const item = Focus.next(screen, Window.window.activeFocusItem, dx, dy)
        if (item)
            item.forceActiveFocus(Qt.TabFocusReason)
    }

    focus: true
    onPageChanged: Host.showPage(page)
    Component.onCompleted: {
        LinkState.recordFrames = true
        Host.showPage(page)
        followGear()
    }
    Keys.onPressed: {
        Theme.showsFocus = true
        event.accepted = true
        if (event.key >= Qt.Key_1 && event.key <= Qt.Key_6)
            show(rail.pages[event.key - Qt.Key_1].name)
        else if (event.key === Qt.Key_Left || event.key === Qt.Key_Right)
            moveFocus(event.key === Qt.Key_Right ? 1 : -1, 0)
        else if (event.key === Qt.Key_Up || event.key === Qt.Key_Down)
            moveFocus(0, event.key === Qt.Key_Down ? 1 : -1)
        else if (event.key === Qt.Key_N)
            night = !night
        else if (event.key === Qt.Key_R)
            Host.toggleReverse()
        else
            event.accepted = false
    }

    Binding {
        target: Theme
        property: "night"
        value: unit.night
    }

    Binding {
        target: Theme
        property: "unit"
        value: Math.min(unit.width / 1024, unit.height / 600)
        when: unit.width > 0
    }

    Connections {
        function onReverseChanged() {
            unit.followGear()
        }

        function onPageWanted(name) {
            unit.show(name)
        }

        target: Host
    }

    Connections {
        function onSupportedChanged() {
            unit.leaveUnoffered()
        }

        target: ScreensState
    }

    Rectangle {
        anchors.fill: parent
        color: Theme.background
    }

    Item {
        id: screen

        anchors.fill: parent

        Rail {
            id: rail

            width: Theme.px(104)
            height: parent.height
            current: unit.page
            onChosen: unit.show(name)
        }

        StatusBar {
            anchors.left: rail.right
            anchors.right: parent.right
            height: Theme.px(64)
            title: loader.item ? loader.item.title : ""
            onNightTapped: unit.night = !unit.night
        }

        Loader {
            id: loader

            objectName: "pageLoader"
            anchors.left: rail.right
            anchors.right: parent.right
            anchors.bottom: parent.bottom
            height: parent.height - Theme.px(64)
            source: "pages/" + unit.page.charAt(0).toUpperCase() + unit.page.slice(1) + "Page.qml"
        }
    }
}
