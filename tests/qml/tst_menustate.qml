import QtQuick 2.15
import QtTest 1.2
import CanBus 1.0

ItemTest {
    name: "MenuState"
    object: MenuState
    before: ({ menu: [], minus: false, plus: false, texts: [] })

    // What a handler of the first change finds of the others.
    property string seen

    Connections {
        target: MenuState
        function onMenuChanged() { seen = MenuState.minus + " " + MenuState.plus + " " + MenuState.texts }
    }

    function test_1_theScreenFollows() {
        car.send("9f 02 54 11 00 01 02 03 04 03 41 00 42 00 41 9f 03")
        waitFor("menu", [1, 2, 3, 4])
        expectItems({ minus: true, plus: true, texts: ["A", "B"] })
        expectChanged(["valid", "menu", "minus", "plus", "texts"])
    }

    function test_2_aHandlerSeesAllOfTheNewScreen() {
        compare(seen, "true true A,B")
    }

    function test_3_onlyWhatChangesIsAnnounced() {
        car.send("9f 02 54 11 00 01 02 03 04 01 4f 6e 65 00 04 9f 03")
        waitFor("texts", ["One"])
        expectItems({ menu: [1, 2, 3, 4], minus: true, plus: false })
        expectChanged(["plus", "texts"])
    }
}
