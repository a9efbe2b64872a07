import QtQuick 2.15
import QtTest 1.2
import CanBus 1.0

// The library's own objects: what QML calls arrives at the box.
TestCase {
    name: "Singletons"

    SignalSpy { id: temperatures; target: Climate; signalName: "updateClimateMainTemp" }
    SignalSpy { id: gone; target: CanBusPlayer; signalName: "canbusConnectStatus" }

    function initTestCase() {
        car.start()
        car.send("9f 02 40 01 00 00 01 40 9f 03")
        gone.wait()
        // Their ids are those of the commands.
        car.send("9f 02 51 04 00 05 44 72 69 76 65 1c 9f 03")
        car.send("9f 02 52 05 00 41 75 74 6f 00 78 9f 03")
        car.send("9f 02 53 06 00 50 61 72 6b 00 7d 9f 03")
        car.send("9f 02 54 11 00 01 02 03 04 01 4f 6e 65 00 04 9f 03")
        car.send("9f 02 50 03 02 00 d7 00 e6 6c 1b 38 5f c8 9b 64 e4 72 36 16 f1 9f 03")
        temperatures.wait()
    }

    function test_commands_data() {
        return [
            { tag: "Climate, a press alone", call: () => Climate.acBtn(), frame: "9f02509300120100d09f03" },
            { tag: "Climate, a release", call: () => Climate.fanSpeedUp(false), frame: "9f02509300190000da9f03" },
            { tag: "Climate, a value", call: () => Climate.manualTemp(200), frame: "9f025093001b01c8119f03" },
            { tag: "Climate, any button", call: () => Climate.onSendDataSort(3, true, 7),
              frame: "9f02509300030107c69f03" },
            { tag: "Gauges", call: () => Gauges.Gauge1_CenterGauge(true), frame: "9f025194000101c59f03" },
            { tag: "Vehicle", call: () => Vehicle.checkEngine(), frame: "9f025295000101c79f03" },
            { tag: "Parking", call: () => Parking.settings(), frame: "9f0253920000c19f03" },
            { tag: "CanBusPlayer", call: () => CanBusPlayer.onMenuPress(1, 2, 3), frame: "9f02549100010203c59f03" }
        ]
    }

    function test_commands(row) {
        row.call()
        tryVerify(() => car.commands.includes(row.frame), 5000, car.commands.join("\n"))
    }

    function test_signals() {
        compare(temperatures.signalArguments[0][0], 215)
        compare(temperatures.signalArguments[0][1], 1)
    }
}
