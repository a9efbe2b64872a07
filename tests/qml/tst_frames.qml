import QtQuick 2.15
import QtTest 1.2
import CanBus 1.0

// The last frames on the line, for the eye.
Item {
    width: 400
    height: 400

    // All that the properties have shown.
    property var sent: []
    property var received: []

    Connections {
        target: LinkState
        function onLastSentChanged() { sent.push(LinkState.lastSent) }
        function onLastReceivedChanged() { received.push(LinkState.lastReceived) }
    }

    ListView {
        id: list
        anchors.fill: parent
        model: LinkState.frames
        delegate: Text {
            height: 10
            text: time + " " + direction + " " + hex
        }
    }

    TestCase {
        name: "Frames"
        when: windowShown

        function test_1_nothingIsRecordedUnasked() {
            car.start()
            car.send("9f 02 50 03 00 07 4b 6c 69 6d 61 16 9f 03")
            tryVerify(() => ClimateState.title === "Klima")
            verify(!LinkState.recordFrames)
            compare(list.count, 0)
            compare(LinkState.lastReceived, "")
            compare(LinkState.lastSent, "")
        }

        // The link's own frames may stand between any two.
        function test_2_bothDirectionsAreRecorded() {
            LinkState.recordFrames = true
            car.send("9f 02 50 03 00 08 4b 6c 69 6d 61 19 9f 03")
            tryVerify(() => sent.includes("9f 06 50 50 9f 03"))
            verify(received.includes("9f 02 50 03 00 08 4b 6c 69 6d 61 19 9f 03"))
            list.forceLayout()
            const rows = [...Array(list.count).keys()].map(row => list.itemAtIndex(row).text)
            const acknowledged = rows.findIndex(
                row => /^\d\d:\d\d:\d\d\.\d\d\d sent 9f 06 50 50 9f 03$/.test(row))
            const reported = rows.findIndex(
                row => /^\d\d:\d\d:\d\d\.\d\d\d received 9f 02 50 03 00 08 4b 6c 69 6d 61 19 9f 03$/.test(row))
            verify(acknowledged >= 0, rows)
            verify(reported > acknowledged, rows)
        }

        function test_3_theLast32AreKept() {
            for (let i = 0; i < 40; ++i)
                car.send("9f 02 55 02 00 0d 5a 9f 03")
            car.send("9f 02 50 03 00 07 4b 6c 69 6d 61 16 9f 03")
            tryVerify(() => received.includes("9f 02 50 03 00 07 4b 6c 69 6d 61 16 9f 03"))
            compare(list.count, 32)
        }

        function test_4_whatIsThereStaysWhenRecordingEnds() {
            LinkState.recordFrames = false
            const last = LinkState.lastReceived
            car.send("9f 02 50 03 00 08 4b 6c 69 6d 61 19 9f 03")
            tryVerify(() => ClimateState.type === 8)
            compare(list.count, 32)
            compare(LinkState.lastReceived, last)
        }

        function test_5_framesCanBeCleared() {
            LinkState.clearFrames()
            compare(list.count, 0)
            compare(LinkState.lastReceived, "")
            compare(LinkState.lastSent, "")
        }
    }
}
