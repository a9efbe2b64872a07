import QtQuick 2.15
import "../controls"
import "../style"

// A heading of the panel, and what stands under it in so many columns.
Column {
    id: section

    property alias title: heading.text
    property alias columns: grid.columns
    readonly property real cell: (width - (columns - 1) * Theme.gap) / columns
    default property alias content: grid.data

    spacing: Theme.px(6)

    Label {
        id: heading

        font.pixelSize: Theme.smallText
        color: Theme.textDim
    }

    Grid {
        id: grid

        columns: 3
        spacing: Theme.gap
    }
}
