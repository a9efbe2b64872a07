import QtQuick 2.15
import QtTest 1.2
import CanBus 1.0

ItemTest {
    name: "ScreensState"
    object: ScreensState
    before: ({
        supported: [], climate: false, gauges: false, vehicle: false, parking: false, menu: false,
        reverseCamera: false, numbers: { climate: 0, gauges: 2, menu: 4, parking: 1, vehicle: 3 }
    })

    function test_1_theFlagsFollow() {
        car.send("9f 02 55 02 00 0d 5a 9f 03")
        waitFor("supported", [true, false, true, true, false])
        expectItems({ climate: true, gauges: true, vehicle: true, parking: false, menu: false,
                      reverseCamera: false })
        expectChanged(["valid", "supported", "climate", "gauges", "vehicle"])
    }

    function test_2_onlyWhatChangesIsAnnounced() {
        car.send("9f 02 55 02 00 0d 5a 9f 03")
        car.send("9f 02 55 02 00 0f 58 9f 03")
        waitFor("supported", [true, true, true, true, false])
        expectItems({ parking: true, reverseCamera: true })
        expectChanged(["supported", "parking", "reverseCamera"])
    }

    function test_3_aBoxMayCountOtherwise() {
        ScreensState.numbers = { menu: 0, climate: 4, parking: 2, gauges: 17 }
        expectItems({ menu: true, climate: false, parking: true, gauges: false, vehicle: false,
                      reverseCamera: true })
        expectChanged(["numbers", "menu", "climate", "gauges", "vehicle"])
    }

    function test_4_theSameNumbersAreNoChange() {
        ScreensState.numbers = { menu: 0, climate: 4, parking: 2, gauges: 17 }
        expectChanged([])
    }
}
