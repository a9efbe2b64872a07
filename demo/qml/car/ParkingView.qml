import QtQuick 2.15
import "../style"

// The car with sixteen zones around it. Zones run from left to right, and from front to rear. Those of a side whose
// sensor is off are pale.
Item {
    id: view

    property var front: []
    property var rear: []
    property var leftSide: []
    property var rightSide: []
    property var sensors: [] // of front, rear, left and right
    readonly property real carScale: 0.62 * Theme.unit
    readonly property real carWidth: 130 * carScale
    readonly property real carHeight: 400 * carScale
    readonly property real pitch: Theme.px(19)
    readonly property real sidePitch: Theme.px(30)
    readonly property real inner: Theme.px(122)
    readonly property real spread: 25 // degrees for each zone
    readonly property real zoneHeight: (carHeight - Theme.px(76)) / 4

    function opacityOf(side) {
        return sensors[side] === true ? 1 : 0.4
    }

    function valueOf(list, index) {
        return list[index] === undefined ? 255 : list[index]
    }

    CarBody {
        anchors.centerIn: parent
        scale: view.carScale
    }

    Repeater {
        model: 4

        ArcZone {
            x: view.width / 2
            y: view.height / 2 - view.carHeight / 2 + Theme.px(104)
            value: view.valueOf(view.front, index)
            opacity: view.opacityOf(0)
            inner: view.inner
            pitch: view.pitch
            from: -90 + (index - 2) * view.spread + 1
            sweep: view.spread - 2
        }
    }

    Repeater {
        model: 4

        ArcZone {
            x: view.width / 2
            y: view.height / 2 + view.carHeight / 2 - Theme.px(104)
            value: view.valueOf(view.rear, index)
            opacity: view.opacityOf(1)
            inner: view.inner
            pitch: view.pitch
            from: 90 + (2 - index) * view.spread - 1
            sweep: -(view.spread - 2)
        }
    }

    Repeater {
        model: 8

        SideZone {
            readonly property int zone: index % 4

            isLeft: index < 4
            x: view.width / 2 + (isLeft ? -view.carWidth / 2 - Theme.px(22) - width : view.carWidth / 2 + Theme.px(22))
            y: view.height / 2 + (zone - 2) * view.zoneHeight + Theme.px(2)
            height: view.zoneHeight - Theme.px(4)
            pitch: view.sidePitch
            value: view.valueOf(isLeft ? view.leftSide : view.rightSide, zone)
            opacity: view.opacityOf(isLeft ? 2 : 3)
        }
    }
}
