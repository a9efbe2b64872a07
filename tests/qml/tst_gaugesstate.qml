import QtQuick 2.15
import QtTest 1.2
import CanBus 1.0

ItemTest {
    name: "GaugesState"
    object: GaugesState
    before: ({
        types: [], title: "", labels: [], labelState1: -1, labelState2: -1,
        scale: [], centerTexts: [], topTexts: [], bottomTexts: [],
        values: [], valueTexts: [], zeroPositions: [], formats: [], peakColor: -1, shift: false
    })

    function test_1_typesAndTitleFollow() {
        car.send("9f 02 51 04 00 05 44 72 69 76 65 1c 9f 03")
        waitFor("types", [true, false, true, false])
        expectItems({ title: "Drive" })
        expectChanged(["valid", "types", "title"])
    }

    function test_2_theSameTypesAreNoChange() {
        car.send("9f 02 51 04 00 05 53 70 6f 72 74 1a 9f 03")
        waitFor("title", "Sport")
        expectChanged(["title"])
    }

    function test_3_textsFollow() {
        car.send("9f 02 51 04 01 54 72 69 70 00 41 76 67 00 3b 9f 03")
        car.send("9f 02 51 04 02 30 00 31 30 00 32 30 00 33 30 00 34 30 00 35 30 00 36 30 00 37 30 00"
                 + "38 30 00 39 30 00 31 30 30 72 70 6d 00 78 31 30 30 00 71 9f 03")
        car.send("9f 02 51 04 03 6b 6d 2f 68 00 72 70 6d 00 78 9f 03")
        car.send("9f 02 51 04 04 56 00 62 61 72 00 76 9f 03")
        waitFor("bottomTexts", ["V", "bar"])
        expectItems({
            labels: ["Trip", "Avg"],
            scale: ["0", "10", "20", "30", "40", "50", "60", "70", "80", "90", "100"],
            centerTexts: ["rpm", "x100"], topTexts: ["km/h", "rpm"]
        })
        expectChanged(["labels", "scale", "centerTexts", "topTexts", "bottomTexts"])
    }

    function test_4_theStateFollows() {
        car.send("9f 02 51 04 05 0a 80 ab 15 01 11 02 22 03 33 04 44 31 32 38 00 31 37 00 19 9f 03")
        waitFor("valueTexts", ["128", "17"])
        expectItems({
            values: [128, 17, 34, 51, 68], zeroPositions: [10, 1, 2, 3, 4],
            formats: [true, false, true, false, true], shift: true,
            labelState1: 2, labelState2: 1, peakColor: 5
        })
        expectChanged(["values", "valueTexts", "zeroPositions", "formats", "shift", "labelState1",
                       "labelState2", "peakColor"])
    }

    function test_5_onlyWhatChangesIsAnnounced() {
        car.send("9f 02 51 04 05 0a 81 ab 15 01 11 02 22 03 33 04 44 31 32 38 00 31 37 00 18 9f 03")
        waitFor("values", [129, 17, 34, 51, 68])
        expectChanged(["values"])
    }
}
