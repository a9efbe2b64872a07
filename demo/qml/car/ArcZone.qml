import QtQuick 2.15
import QtQuick.Shapes 1.15
import "../style"

// A zone in front of the car or behind it: four bands around a point.
Shape {
    id: zone

    property int value: 255
    property real inner: Theme.px(100) // radius of the nearest band
    property real pitch: Theme.px(18)
    property real from: 0
    property real sweep: 20
    readonly property int reached: Distance.band(value)

    ArcBand {
        radius: zone.inner
        strokeWidth: zone.pitch - Theme.px(4)
        strokeColor: Distance.bandColor(0, zone.reached)
        from: zone.from
        sweep: zone.sweep
    }

    ArcBand {
        radius: zone.inner + zone.pitch
        strokeWidth: zone.pitch - Theme.px(4)
        strokeColor: Distance.bandColor(1, zone.reached)
        from: zone.from
        sweep: zone.sweep
    }

    ArcBand {
        radius: zone.inner + 2 * zone.pitch
        strokeWidth: zone.pitch - Theme.px(4)
        strokeColor: Distance.bandColor(2, zone.reached)
        from: zone.from
        sweep: zone.sweep
    }

    ArcBand {
        radius: zone.inner + 3 * zone.pitch
        strokeWidth: zone.pitch - Theme.px(4)
        strokeColor: Distance.bandColor(3, zone.reached)
        from: zone.from
        sweep: zone.sweep
    }
}
