import QtQuick 2.15
import "../style"

// A line of text in the type of the head unit.
Text {
    color: Theme.text
    font.pixelSize: Theme.bodyText
    elide: Text.ElideRight
    verticalAlignment: Text.AlignVCenter
    textFormat: Text.PlainText
}
