import QtQuick 2.15
import "../style"

// A line for something that is open or closed.
StatusLine {
    property bool open: false

    text: open ? "Open" : "Closed"
    color: open ? Theme.alarm : Theme.good
}
