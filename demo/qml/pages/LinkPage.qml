import QtQuick 2.15
import CanBus 1.0
import "../controls"
import "../style"

// What the link goes through: its figures, and the last frames on the line. It is live without a link, too.
Page {
    id: page

    readonly property var figures: LinkState.figures
    readonly property var rows: [
        ["Received bytes", "receivedBytes"], ["Received frames", "receivedFrames"], ["Received ACKs", "receivedAcks"],
        ["Received NACKs", "receivedNacks"], ["Bad checks", "badChecks"], ["Skipped bytes", "skippedBytes"],
        ["Discarded bytes", "discardedBytes"], ["Sent bytes", "sentBytes"], ["Sent frames", "sentFrames"],
        ["Sent ACKs", "sentAcks"], ["Sent NACKs", "sentNacks"], ["NACKs, waiting", "awaitingNacks"],
        ["Retransmissions", "retransmissions"], ["Given up", "givenUp"], ["Answers", "answers"],
        ["Last answer, ms", "lastAnswerUs"], ["Mean answer, ms", "meanAnswerUs"], ["Max answer, ms", "maxAnswerUs"],
        ["Most waiting", "cacheHighWater"], ["Refused, full", "refusedFull"], ["Fullest buffer", "bufferHighWater"],
        ["Discarded buffers", "discardedBuffers"], ["Connect requests", "connectRequests"],
        ["Connection checks", "connectionChecks"], ["Link losses", "linkLosses"], ["Port errors", "portErrors"]
    ]

    function textOf(name) {
        const figure = figures[name]
        if (figure === undefined)
            return "--"
        return name.endsWith("Us") ? (figure / 1000).toFixed(1) : String(figure)
    }

    title: "Link"
    dimsContent: false

    Card {
        id: figuresCard

        anchors.left: parent.left
        anchors.right: parent.right
        anchors.top: parent.top
        height: 7 * Theme.px(32) + Theme.px(20)

        Grid {
            anchors.fill: parent
            anchors.margins: Theme.px(10)
            anchors.leftMargin: Theme.px(18)
            anchors.rightMargin: Theme.px(18)
            flow: Grid.TopToBottom
            rows: 7
            columns: 4
            columnSpacing: Theme.px(28)

            Repeater {
                model: page.rows

                FigureLine {
                    width: (figuresCard.width - Theme.px(36) - 3 * Theme.px(28)) / 4
                    height: Theme.px(32)
                    title: modelData[0]
                    text: page.textOf(modelData[1])
                }
            }
        }
    }

    Card {
        anchors.left: parent.left
        anchors.right: parent.right
        anchors.top: figuresCard.bottom
        anchors.topMargin: Theme.gap
        anchors.bottom: parent.bottom

        ListView {
            objectName: "frames"
            readonly property int lineHeight: Theme.px(25)

            anchors.centerIn: parent
            width: parent.width - Theme.px(36)
            height: Math.floor((parent.height - Theme.px(16)) / lineHeight) * lineHeight
            interactive: false
            model: LinkState.frames
            delegate: FrameLine {
                width: ListView.view.width
                height: ListView.view.lineHeight
                visible: (index + 1) * height <= ListView.view.height
                time: model.time
                sent: model.direction === "sent"
                hex: model.hex
            }
        }
    }
}
