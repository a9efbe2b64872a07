pragma Singleton
import QtQuick 2.15

// Colours, type and spacing of the head unit. All sizes are given for a screen of 1024x600, and px() turns them
// into those of the screen that there is.
QtObject {
    property bool night: true
    property real unit: 1 // pixels for each of 1024x600
    property bool showsFocus: false // once a key was used

    readonly property color background: night ? "#090c11" : "#dfe4ea"
    readonly property color bar: night ? "#0e131a" : "#eef1f5"
    readonly property color surface: night ? "#131922" : "#f7f9fb"
    readonly property color raised: night ? "#1f2833" : "#ffffff"
    readonly property color sunken: night ? "#0c1118" : "#e1e6ec"
    readonly property color down: night ? "#2f3d4d" : "#c9d6e4"
    readonly property color line: night ? "#2a3542" : "#c3ccd6"

    readonly property color text: night ? "#f3f6f9" : "#0f151c"
    readonly property color textDim: night ? "#a9b5c2" : "#47525e"
    readonly property color textFaint: night ? "#66737f" : "#85909c"

    readonly property color accent: night ? "#46b8ff" : "#0068bd"
    readonly property color onAccent: night ? "#06121c" : "#ffffff"
    readonly property color warm: night ? "#ff8a4c" : "#d4500f"
    readonly property color cool: night ? "#5ad1ff" : "#0077b6"
    readonly property color good: night ? "#3fdc97" : "#0f8a58"
    readonly property color caution: night ? "#ffc24a" : "#bf7300"
    readonly property color alarm: night ? "#ff5f57" : "#c9261e"

    // A button's lamp, and the colour of a peak, by the state that the box gives.
    readonly property var lampColors: [line, accent, caution, alarm]
    readonly property var peakColors: [accent, good, "#8fdc3f", caution, warm, "#ff6a4c", alarm]
    readonly property var dayPeakColors: [accent, good, "#5fa81c", "#e39a00", warm, "#d83c17", alarm]

    readonly property int hugeText: px(62)
    readonly property int largeText: px(40)
    readonly property int titleText: px(26)
    readonly property int bodyText: px(20)
    readonly property int smallText: px(17)

    readonly property int touch: px(64)
    readonly property int gap: px(10)
    readonly property int margin: px(14)
    readonly property int radius: px(14)

    readonly property string mono: "DejaVu Sans Mono"

    function px(size) {
        return Math.round(size * unit)
    }

    function lamp(state) {
        return lampColors[Math.max(0, Math.min(3, state))]
    }

    function peak(state) {
        const colors = night ? peakColors : dayPeakColors
        return colors[Math.max(0, Math.min(6, state))]
    }

    function tinted(color, alpha) {
        return Qt.rgba(color.r, color.g, color.b, alpha)
    }
}
