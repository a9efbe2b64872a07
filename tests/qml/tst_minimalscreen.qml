import QtQuick 2.15
import QtTest 1.2
import CanBus 1.0

// The smallest screen of examples/ shows what the box reports, and a press on it arrives there.
TestCase {
    id: test
    name: "MinimalScreen"

    property var screen: null
    readonly property Item shown: screen && screen.contentItem.children[0]
    readonly property MouseArea pressed: screen && screen.contentItem.children[1]

    function initTestCase() {
        const component = Qt.createComponent("../../examples/minimal-qml/main.qml")
        compare(component.status, Component.Ready, component.errorString())
        screen = component.createObject(null)
        verify(screen)
        car.start()
    }

    function cleanupTestCase() {
        screen.destroy()
    }

    function test_1_showsThatThereIsNothingYet() {
        compare(shown.text, "--")
        fuzzyCompare(shown.opacity, 0.4, 0.01)
    }

    function test_2_showsTheTemperature() {
        car.send("9f 02 50 03 02 00 d7 00 e6 6c 1b 38 5f c8 9b 64 e4 72 36 16 f1 9f 03")
        tryCompare(shown, "text", "215")
    }

    function test_3_showsThatTheLinkIsUp() {
        car.send("9f 02 40 01 00 00 01 40 9f 03")
        tryCompare(shown, "opacity", 1)
    }

    function test_4_aPressArrivesAtTheBox() {
        mouseClick(pressed)
        tryVerify(() => car.commands.includes("9f02509300120100d09f03"), 5000, car.commands.join("\n"))
    }
}
