import QtQuick 2.15
import CanBus 1.0
import "../controls"
import "../style"

Page {
    id: page

    readonly property real side: Theme.px(206)
    readonly property real buttonHeight: Theme.px(72)

    function at(list, index, other) {
        return index < list.length ? list[index] : other
    }

    title: GaugesState.title || "Gauges"
    valid: GaugesState.valid
    stale: GaugesState.stale

    Item {
        id: dials

        anchors.top: parent.top
        anchors.left: parent.left
        anchors.right: parent.right
        anchors.bottom: buttons.top
        anchors.bottomMargin: Theme.gap

        CenterGauge {
            objectName: "Gauge1_CenterGauge"
            anchors.fill: parent
            anchors.leftMargin: page.side + Theme.gap
            anchors.rightMargin: page.side + Theme.gap
            value: page.at(GaugesState.values, 0, -1)
            zero: page.at(GaugesState.zeroPositions, 0, 0)
            valueText: page.at(GaugesState.valueTexts, 0, "")
            scaleTexts: GaugesState.scale
            texts: GaugesState.centerTexts
            peak: GaugesState.peakColor
            shift: GaugesState.shift
            onBegan: Gauges.Gauge1_CenterGauge(true)
            onEnded: Gauges.Gauge1_CenterGauge(false)
        }

        Repeater {
            model: ["Gauge2_TopLeft", "Gauge3_TopRight", "Gauge4_BottomLeft", "Gauge5_BottomRight"]

            CornerGauge {
                readonly property bool isLeft: index % 2 === 0
                readonly property bool isTop: index < 2

                objectName: modelData
                x: isLeft ? 0 : dials.width - width
                y: isTop ? 0 : dials.height - height
                width: page.side
                height: (dials.height - Theme.gap) / 2
                value: page.at(GaugesState.values, index + 1, -1)
                zero: page.at(GaugesState.zeroPositions, index + 1, 0)
                title: page.at(isTop ? GaugesState.topTexts : GaugesState.bottomTexts, index % 2, "")
                valueText: page.at(GaugesState.valueTexts, index + 1, "")
                onBegan: Gauges[modelData](true)
                onEnded: Gauges[modelData](false)
            }
        }
    }

    CustomRow {
        id: buttons

        anchors.left: parent.left
        anchors.right: parent.right
        anchors.bottom: parent.bottom
        height: page.buttonHeight
        labels: GaugesState.labels
        state1: GaugesState.labelState1
        state2: GaugesState.labelState2
        onControl1: Gauges.customControl1()
        onControl2: Gauges.customControl2()
        onSettings: Gauges.settings()
    }
}
