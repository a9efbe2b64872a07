import QtQuick 2.15
import QtTest 1.2
import CanBus 1.0

// The link comes up, is lost, and comes back, as every state object tells it.
TestCase {
    id: test
    name: "Link"

    readonly property var objects: [ClimateState, GaugesState, VehicleState, ParkingState, MenuState,
                                    ScreensState, LinkState]

    SignalSpy { id: connectedSpy; target: LinkState; signalName: "connectedChanged" }
    SignalSpy { id: staleSpy; target: ClimateState; signalName: "staleChanged" }
    SignalSpy { id: validSpy; target: LinkState; signalName: "validChanged" }

    // What a handler of either change finds of the other.
    property int contradictions: 0

    Connections {
        target: LinkState
        function onStaleChanged() { test.contradictions += LinkState.connected === LinkState.stale }
        function onConnectedChanged() { test.contradictions += LinkState.connected === LinkState.stale }
    }

    function comeUp() {
        car.answers = true
        car.send("9f 02 40 01 00 00 01 40 9f 03")
        tryVerify(() => LinkState.connected, 10000)
    }

    // A command that is never answered.
    function goDown() {
        car.answers = false
        CanBusPlayer.requestNormal()
        tryVerify(() => !LinkState.connected, 10000)
    }

    function expectStale(stale) {
        for (const object of objects)
            compare(object.stale, stale, object)
    }

    function test_1_downBeforeThereIsAHost() {
        expectStale(true)
        verify(!LinkState.connected)
        verify(!LinkState.valid)
        compare(JSON.stringify(LinkState.figures), "{}")
    }

    function test_2_comesUp() {
        car.start()
        comeUp()
        expectStale(false)
        verify(LinkState.valid)
        compare(connectedSpy.count, 1)
        compare(staleSpy.count, 1)
        compare(validSpy.count, 1)
        verify(!ClimateState.valid)
    }

    function test_3_valuesStayWhenTheLinkIsLost() {
        car.send("9f 02 50 03 00 07 4b 6c 69 6d 61 16 9f 03")
        tryVerify(() => ClimateState.title === "Klima")
        goDown()
        expectStale(true)
        verify(LinkState.valid)
        verify(ClimateState.valid)
        compare(ClimateState.title, "Klima")
        compare(ClimateState.type, 7)
        compare(connectedSpy.count, 2)
        compare(staleSpy.count, 2)
    }

    function test_4_valuesAreStaleNoLongerWhenTheLinkIsBack() {
        comeUp()
        expectStale(false)
        compare(ClimateState.title, "Klima")
        compare(connectedSpy.count, 3)
        compare(contradictions, 0)
        compare(staleSpy.count, 3)
        compare(validSpy.count, 1)
    }

    function test_5_figuresAreWhatTheLinkHasBeenThrough() {
        const figures = LinkState.figures
        compare(figures.linkLosses, 1)
        verify(figures.receivedFrames >= 3)
        verify(figures.sentFrames > figures.retransmissions)
        verify(figures.retransmissions >= 2)
        compare(figures.receivedByCategory.Climate.frames, 1)
        compare(figures.receivedByCategory.Climate.bytes, 6)
        verify(figures.sentByCommand.RequestData.frames >= 1)
        compare(figures.badChecks, 0)
    }

    Loader {
        id: page
        active: false
        sourceComponent: Item { property int badChecks: LinkState.figures.badChecks }
    }

    function test_6_boundFiguresFollow() {
        LinkState.refreshInterval = 50
        page.active = true
        compare(page.item.badChecks, 0)
        car.send("9f 02 50 03 00 07 4b 6c 69 6d 61 17 9f 03")
        tryVerify(() => page.item.badChecks === 1)
        page.active = false
    }

    function test_7_figuresEndWithTheProtocol() {
        car.deleteProtocol()
        compare(JSON.stringify(LinkState.figures), "{}")
    }
}
