import QtQuick 2.15
import QtTest 1.2
import CanBus 1.0

ItemTest {
    name: "ClimateState"
    object: ClimateState
    before: ({
        type: -1, title: "", labels: [],
        mainTemp: -1, mainUnit: -1, secondTemp: -1, secondUnit: -1,
        leftHeatedSeat: -1, rightHeatedSeat: -1, leftCooledSeat: -1, rightCooledSeat: -1,
        fanDirectValue: -1, fanDirect: -1, fanSpeedStatus: -1, ventPosition: -1, manualTemp: -1,
        systemOn: false, driverSeat: false, buttons: []
    })

    function test_1_titleAndTypeFollow() {
        car.send("9f 02 50 03 00 07 4b 6c 69 6d 61 16 9f 03")
        waitFor("title", "Klima")
        expectItems({ type: 7 })
        expectChanged(["valid", "type", "title"])
    }

    function test_2_labelsFollow() {
        car.send("9f 02 50 03 01 48 65 63 6b 00 49 6f 6e 65 6e 00 34 9f 03")
        waitFor("labels", ["Heck", "Ionen"])
        expectChanged(["labels"])
    }

    function test_3_theStateFollows() {
        car.send("9f 02 50 03 02 00 d7 00 e6 6c 1b 38 5f c8 9b 64 e4 72 36 16 f1 9f 03")
        waitFor("manualTemp", 22)
        expectItems({
            mainTemp: 215, mainUnit: 1, secondTemp: 230, secondUnit: 2,
            leftHeatedSeat: 3, rightHeatedSeat: 8, leftCooledSeat: 5, rightCooledSeat: 0,
            fanDirectValue: 200, fanDirect: 2, fanSpeedStatus: 2, ventPosition: 6,
            systemOn: true, driverSeat: true,
            buttons: [3, 0, 0, 1, 2, 3, 1, 2, 3, 1, 0, 3, 2, 1, 0, 1, 3, 0, 2, 1]
        })
        expectChanged(["mainTemp", "mainUnit", "secondTemp", "secondUnit", "leftHeatedSeat",
                       "rightHeatedSeat", "leftCooledSeat", "rightCooledSeat", "fanDirectValue",
                       "fanDirect", "fanSpeedStatus", "ventPosition", "manualTemp", "systemOn",
                       "driverSeat", "buttons"])
    }

    function test_4_onlyWhatChangesIsAnnounced() {
        car.send("9f 02 50 03 02 00 d7 00 e6 6c 1b 38 5f c8 9b 64 e4 72 36 16 f1 9f 03")
        car.send("9f 02 50 03 02 00 d8 00 e6 6c 1b 38 5f c8 9b 64 e4 72 36 16 fe 9f 03")
        waitFor("mainTemp", 216)
        expectItems({ mainUnit: 1, title: "Klima" })
        expectChanged(["mainTemp"])
    }

    function test_5_aRepeatedAnnouncementIsNoChange() {
        Climate.getClimateInfo()
        expectItems({ mainTemp: 216, title: "Klima", labels: ["Heck", "Ionen"] })
        expectChanged([])
    }
}
