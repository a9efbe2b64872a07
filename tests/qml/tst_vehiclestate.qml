import QtQuick 2.15
import QtTest 1.2
import CanBus 1.0

ItemTest {
    name: "VehicleState"
    object: VehicleState
    before: ({
        title: "", labels: [], labelState1: -1, labelState2: -1, doors: [], hood: false, trunk: false,
        battery: false, checkEngine: 0, tires: [], tireTexts: []
    })

    function test_1_textsFollow() {
        car.send("9f 02 52 05 00 41 75 74 6f 00 78 9f 03")
        car.send("9f 02 52 05 01 52 65 73 65 74 00 53 65 72 76 69 63 65 00 5e 9f 03")
        waitFor("labels", ["Reset", "Service"])
        expectItems({ title: "Auto" })
        expectChanged(["valid", "title", "labels"])
    }

    function test_2_theStateFollows() {
        car.send("9f 02 52 05 02 3a e4 b6 32 2e 33 00 32 2e 34 00 3a 9f 03")
        waitFor("tireTexts", ["2.3", "2.4"])
        expectItems({
            doors: [false, true, false, true], hood: true, trunk: true, battery: true, checkEngine: 2,
            tires: [0, 1, 2, 3], labelState1: 3, labelState2: 2
        })
        expectChanged(["doors", "hood", "trunk", "battery", "checkEngine", "tires", "labelState1",
                       "labelState2", "tireTexts"])
    }

    function test_3_onlyWhatChangesIsAnnounced() {
        car.send("9f 02 52 05 02 3a e4 b6 32 2e 33 00 32 2e 34 00 3a 9f 03")
        car.send("9f 02 52 05 02 2a e4 b6 32 2e 33 00 32 2e 34 00 2a 9f 03")
        waitFor("hood", false)
        expectItems({ trunk: true })
        expectChanged(["hood"])
    }
}
