import QtQuick 2.15
import CanBus 1.0
import "../car"
import "../controls"
import "../style"

Page {
    id: page

    // An old distance is worse than none.
    function known(zones) {
        return page.live ? zones : []
    }

    function nearest(zones) {
        return zones.length === 0 ? -1 : Math.min.apply(null, zones)
    }

    title: ParkingState.title || "Parking"
    valid: ParkingState.valid
    stale: ParkingState.stale
    keepsValues: false

    Card {
        id: stage

        anchors.left: parent.left
        anchors.right: list.left
        anchors.rightMargin: Theme.gap
        anchors.top: parent.top
        anchors.bottom: buttons.top
        anchors.bottomMargin: Theme.gap

        ParkingView {
            anchors.fill: parent
            front: page.known(ParkingState.front)
            rear: page.known(ParkingState.rear)
            leftSide: page.known(ParkingState.left)
            rightSide: page.known(ParkingState.right)
            sensors: ParkingState.sensors
        }
    }

    Column {
        id: list

        readonly property var sides: [
            { "title": "Front", "zones": page.known(ParkingState.front) },
            { "title": "Rear", "zones": page.known(ParkingState.rear) },
            { "title": "Left", "zones": page.known(ParkingState.left) },
            { "title": "Right", "zones": page.known(ParkingState.right) }
        ]

        anchors.right: parent.right
        anchors.top: parent.top
        width: Theme.px(250)
        spacing: Theme.gap

        Repeater {
            model: 4

            SideCard {
                objectName: "side" + index
                width: list.width
                height: (stage.height - 3 * Theme.gap) / 4
                title: list.sides[index].title
                measures: ParkingState.sensors[index] === true
                value: page.nearest(list.sides[index].zones)
            }
        }
    }

    CustomRow {
        id: buttons

        anchors.left: parent.left
        anchors.right: parent.right
        anchors.bottom: parent.bottom
        height: Theme.px(72)
        labels: ParkingState.labels
        state1: ParkingState.labelState1
        state2: ParkingState.labelState2
        onControl1: Parking.customControl1()
        onControl2: Parking.customControl2()
        onSettings: Parking.settings()
    }
}
