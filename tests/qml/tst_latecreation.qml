import QtQuick 2.15
import QtTest 1.2
import CanBus 1.0

// Everything was received before the first look at a state object.
TestCase {
    name: "LateCreation"

    SignalSpy { id: connected; target: CanBusPlayer; signalName: "canbusConnectStatus" }
    SignalSpy { id: tires; target: Vehicle; signalName: "updateVehicleTireText" }
    SignalSpy { id: parking; target: Parking; signalName: "updateParkSensorStatus" }

    function initTestCase() {
        car.start()
        car.send("9f 02 40 01 00 00 01 40 9f 03")
        connected.wait()
        car.send("9f 02 50 03 00 07 4b 6c 69 6d 61 16 9f 03")
        car.send("9f 02 50 03 02 00 d7 00 e6 6c 1b 38 5f c8 9b 64 e4 72 36 16 f1 9f 03")
        car.send("9f 02 51 04 00 05 44 72 69 76 65 1c 9f 03")
        car.send("9f 02 51 04 05 0a 80 ab 15 01 11 02 22 03 33 04 44 31 32 38 00 31 37 00 19 9f 03")
        car.send("9f 02 54 11 00 01 02 03 04 01 4f 6e 65 00 04 9f 03")
        car.send("9f 02 55 02 00 0d 5a 9f 03")
        car.send("9f 02 52 05 02 3a e4 b6 32 2e 33 00 32 2e 34 00 3a 9f 03")
        car.send("9f 02 53 06 02 01 02 03 04 05 06 07 08 09 0a 0b 0c 0d 0e 0f 10 5e 19 9f 03")
        parking.wait()
        tires.wait()
    }

    function test_climate() {
        compare(ClimateState.mainTemp, 215)
        compare(ClimateState.title, "Klima")
        compare(ClimateState.buttons.length, 20)
        verify(ClimateState.valid)
        verify(!ClimateState.stale)
    }

    function test_gauges() {
        compare(GaugesState.values, [128, 17, 34, 51, 68])
        compare(GaugesState.types, [true, false, true, false])
        verify(GaugesState.shift)
        verify(GaugesState.valid)
        verify(!GaugesState.stale)
    }

    function test_vehicle() {
        compare(VehicleState.doors, [false, true, false, true])
        compare(VehicleState.tireTexts[1], "2.4")
        verify(VehicleState.hood)
        verify(VehicleState.valid)
        verify(!VehicleState.stale)
    }

    function test_parking() {
        compare(ParkingState.front, [1, 2, 3, 4])
        compare(ParkingState.labelState2, 3)
        verify(ParkingState.valid)
        verify(!ParkingState.stale)
    }

    // A text screen with one text: the player announces such a one a single time.
    function test_menu() {
        compare(MenuState.menu, [1, 2, 3, 4])
        compare(MenuState.texts.length, 1)
        compare(MenuState.texts[0], "One")
        verify(MenuState.minus)
        verify(MenuState.valid)
        verify(!MenuState.stale)
    }

    function test_screens() {
        compare(ScreensState.supported, [true, false, true, true, false])
        verify(ScreensState.climate)
        verify(!ScreensState.parking)
        verify(ScreensState.valid)
        verify(!ScreensState.stale)
    }

    function test_link() {
        verify(LinkState.connected)
        verify(LinkState.valid)
        verify(!LinkState.stale)
        verify(LinkState.figures.receivedFrames >= 9)
    }
}
