import QtQuick 2.15
import "../style"

// A page: what stands on it is dimmed and takes no touch unless it is live.
Item {
    id: page

    property bool valid: true
    property bool stale: false
    property bool dimsContent: true
    property bool keepsValues: true // without a link the last values are shown
    readonly property bool live: valid && !stale
    default property alias content: body.data
    property string title

    Item {
        id: body

        anchors.fill: parent
        anchors.margins: Theme.margin
        enabled: page.live || !page.dimsContent
        opacity: page.live || !page.dimsContent ? 1 : 0.32
    }

    Rectangle {
        objectName: "notLive"
        anchors.centerIn: parent
        visible: !page.live && page.dimsContent
        width: notice.width + Theme.px(56)
        height: Theme.px(72)
        radius: Theme.px(36)
        color: Theme.raised
        border.width: Theme.px(2)
        border.color: Theme.caution

        Row {
            id: notice

            anchors.centerIn: parent
            spacing: Theme.px(12)

            Icon {
                anchors.verticalCenter: parent.verticalCenter
                path: Icons.warning
                color: Theme.caution
                size: Theme.px(30)
            }

            Label {
                anchors.verticalCenter: parent.verticalCenter
                text: page.valid ? page.keepsValues ? "No link: these are the last values" : "No link"
                                 : page.stale ? "Waiting for the box" : "Nothing received yet"
                font.pixelSize: Theme.bodyText + Theme.px(2)
                font.weight: Font.DemiBold
            }
        }
    }
}
