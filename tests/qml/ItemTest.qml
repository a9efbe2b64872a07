import QtQuick 2.15
import QtTest 1.2
import CanBus 1.0

// A state object's items: watched from the first look at it, compared by name.
TestCase {
    id: test

    property var object
    // Of all items by name: what they are before anything was received.
    property var before: ({})
    // How often each change signal came.
    property var changes: ({})

    function watch() {
        for (const name of Object.keys(before).concat("valid", "stale")) {
            changes[name] = 0
            object[name + "Changed"].connect(() => { ++test.changes[name] })
        }
    }

    function expectItems(items) {
        for (const name in items)
            compare(JSON.stringify(object[name]), JSON.stringify(items[name]), name)
    }

    // Waits until the last of what was sent has arrived.
    function waitFor(name, value) {
        tryVerify(() => JSON.stringify(test.object[name]) === JSON.stringify(value), 5000,
                  name + " is " + JSON.stringify(object[name]) + ", not " + JSON.stringify(value))
    }

    function expectChanged(names) {
        for (const name in changes)
            compare(changes[name], names.includes(name) ? 1 : 0, name + "Changed")
        for (const name in changes)
            changes[name] = 0
    }

    function initTestCase() {
        expectItems(before)
        verify(!object.valid)
        verify(object.stale)
        watch()
        car.start()
    }
}
