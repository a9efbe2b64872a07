import QtQuick 2.15
import "../style"

// What each group of the box has: two controls with texts of its own, and its settings.
Row {
    id: row

    property var labels: []
    property int state1: 0
    property int state2: 0

    signal control1
    signal control2
    signal settings

    spacing: Theme.gap

    LampButton {
        objectName: "customControl1"
        width: (row.width - 2 * row.spacing) / 3
        height: row.height
        text: row.labels[0] || "Custom 1"
        icon: Icons.custom
        lamp: row.state1
        onTapped: row.control1()
    }

    LampButton {
        objectName: "customControl2"
        width: (row.width - 2 * row.spacing) / 3
        height: row.height
        text: row.labels[1] || "Custom 2"
        icon: Icons.custom
        lamp: row.state2
        onTapped: row.control2()
    }

    LampButton {
        objectName: "settings"
        width: (row.width - 2 * row.spacing) / 3
        height: row.height
        text: "Settings"
        icon: Icons.settings
        hasLamp: false
        onTapped: row.settings()
    }
}
