import QtQuick 2.15
import "../style"

// A line for something that is open or closed.
StatusLine {
    property bool known: true
    property bool open: false

    text: !known ? "--" : open ? "Open" : "Closed"
    color: !known ? Theme.textFaint : open ? Theme.alarm : Theme.good
}
