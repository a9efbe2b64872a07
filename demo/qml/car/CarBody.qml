import QtQuick 2.15
import QtQuick.Shapes 1.15
import "../style"

// A car from above, front up, in a field of 200 by 420; scale it to what is needed.
Item {
    id: car

    property bool hood: false
    property bool trunk: false
    readonly property color outline: Theme.night ? "#8394a6" : "#6b7784"
    readonly property color paint: Theme.night ? "#26313d" : "#ffffff"
    readonly property color glass: Theme.night ? "#0c1219" : "#aebbc9"
    // Lamps of the car itself, in no colour that warns.
    readonly property color headLight: Theme.night ? "#c3ced9" : "#e8edf2"
    readonly property color tailLight: Theme.night ? "#7a4243" : "#c08d8b"
    readonly property color openFill: Theme.tinted(Theme.alarm, 0.35)

    width: 200
    height: 420

    Shape {
        anchors.fill: parent

        Outline {
            fillColor: car.paint
            strokeColor: car.outline
            strokeWidth: 2.5
            path: "M38 74 C40 28 64 10 100 10 C136 10 160 28 162 74 L164 140 L165 320 C165 372 158 400 132 407 "
                  + "C112 412 88 412 68 407 C42 400 35 372 35 320 L36 140 Z"
        }

        Outline {
            fillColor: car.hood ? car.openFill : "transparent"
            strokeColor: car.hood ? Theme.alarm : car.outline
            strokeWidth: car.hood ? 4 : 1.2
            path: "M52 70 C56 40 76 26 100 26 C124 26 144 40 148 70 L149 122 C124 113 76 113 51 122 Z"
        }

        Outline {
            fillColor: car.glass
            strokeColor: car.outline
            strokeWidth: 1.2
            path: "M49 134 C74 122 126 122 151 134 L140 176 C118 168 82 168 60 176 Z"
        }

        Outline {
            fillColor: car.glass
            strokeColor: car.outline
            strokeWidth: 1.2
            path: "M62 302 C84 309 116 309 138 302 L147 336 C120 346 80 346 53 336 Z"
        }

        Outline {
            fillColor: car.trunk ? car.openFill : "transparent"
            strokeColor: car.trunk ? Theme.alarm : car.outline
            strokeWidth: car.trunk ? 4 : 1.2
            path: "M52 348 C80 357 120 357 148 348 L143 390 C120 398 80 398 57 390 Z"
        }

        Outline {
            fillColor: car.glass
            strokeColor: car.outline
            strokeWidth: 1
            path: "M44 146 L55 184 L57 290 L44 322 C41 270 41 200 44 146 Z M156 146 L145 184 L143 290 L156 322 "
                  + "C159 270 159 200 156 146 Z"
        }

        Outline {
            fillColor: car.headLight
            strokeColor: car.outline
            strokeWidth: 1
            path: "M45 52 C50 38 58 29 68 24 L66 34 C58 40 52 48 49 58 Z M155 52 C150 38 142 29 132 24 L134 34 "
                  + "C142 40 148 48 151 58 Z"
        }

        Outline {
            fillColor: car.tailLight
            strokeColor: "transparent"
            path: "M40 378 C44 392 52 400 64 403 L64 396 C55 393 49 387 46 376 Z M160 378 C156 392 148 400 136 403 "
                  + "L136 396 C145 393 151 387 154 376 Z"
        }

        Outline {
            fillColor: car.paint
            strokeColor: car.outline
            strokeWidth: 1.5
            path: "M36 150 L20 156 C16 160 17 166 21 168 L36 164 Z M164 150 L180 156 C184 160 183 166 179 168 L164 164 Z"
        }
    }
}
