import QtQuick 2.15
import QtTest 1.2
import CanBus 1.0

ItemTest {
    name: "ParkingState"
    object: ParkingState
    before: ({
        title: "", labels: [], labelState1: 0, labelState2: 0, front: [], rear: [], left: [], right: [],
        sensors: []
    })

    SignalSpy {
        id: titles
        target: Parking
        signalName: "updateParkTopText"
    }

    function test_1_anEmptyTitleIsNothingReceived() {
        car.send("9f 02 53 06 00 00 55 9f 03")
        titles.wait()
        verify(!ParkingState.valid)
        expectChanged([])
    }

    function test_2_textsFollow() {
        car.send("9f 02 53 06 00 50 61 72 6b 00 7d 9f 03")
        car.send("9f 02 53 06 01 4d 75 74 65 00 43 61 6d 00 32 9f 03")
        waitFor("labels", ["Mute", "Cam"])
        expectItems({ title: "Park" })
        expectChanged(["valid", "title", "labels"])
    }

    function test_3_theStateFollows() {
        car.send("9f 02 53 06 02 01 02 03 04 05 06 07 08 09 0a 0b 0c 0d 0e 0f 10 5e 19 9f 03")
        waitFor("sensors", [true, false, true, false])
        expectItems({
            front: [1, 2, 3, 4], rear: [5, 6, 7, 8], left: [9, 10, 11, 12], right: [13, 14, 15, 16],
            labelState1: 2, labelState2: 3
        })
        expectChanged(["front", "rear", "left", "right", "labelState1", "labelState2", "sensors"])
    }

    function test_4_onlyWhatChangesIsAnnounced() {
        car.send("9f 02 53 06 02 01 02 03 04 05 06 07 ff 09 0a 0b 0c 0d 0e 0f 10 5e ee 9f 03")
        waitFor("rear", [5, 6, 7, 255])
        expectChanged(["rear"])
    }
}
