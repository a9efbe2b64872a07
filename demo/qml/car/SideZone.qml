import QtQuick 2.15
import "../style"

// A zone beside the car: four bands, the nearest one at the side of the car.
Item {
    id: zone

    property int value: 255
    property bool isLeft: true
    property real pitch: Theme.px(18)
    readonly property int reached: Distance.band(value)

    width: Distance.bands * pitch

    Repeater {
        model: Distance.bands

        Rectangle {
            x: zone.isLeft ? zone.width - (index + 1) * zone.pitch + Theme.px(4) : index * zone.pitch
            width: zone.pitch - Theme.px(4)
            height: zone.height
            radius: Theme.px(3)
            color: Distance.bandColor(index, zone.reached)
        }
    }
}
