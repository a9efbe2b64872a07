pragma Singleton
import QtQuick 2.15
import "../style"

// How near a value of 0 to 255 is, in four bands; 255 is nothing in reach.
QtObject {
    readonly property int bands: 4
    readonly property int nothing: 240
    readonly property var limits: [60, 110, 170]

    function band(value) {
        if (value === undefined || value >= nothing)
            return bands
        return limits.filter(limit => value >= limit).length
    }

    function color(band) {
        return [Theme.alarm, Theme.warm, Theme.caution, Theme.good][Math.min(band, 3)]
    }

    // The colour of a band of a zone, in which something is in band `reached`.
    function bandColor(band, reached) {
        if (band < reached)
            return Theme.tinted(Theme.line, 0.55)
        return band === reached ? color(reached) : Theme.tinted(color(reached), 0.28)
    }
}
