import QtQuick 2.15
import QtQuick.Shapes 1.15
import "../style"

// A line drawing of Icons, in any size and colour.
Item {
    id: icon

    property string path
    property color color: Theme.text
    property int size: Theme.px(28)
    property real thickness: 1.9

    implicitWidth: size
    implicitHeight: size

    Shape {
        width: 24
        height: 24
        transformOrigin: Item.TopLeft
        scale: icon.size / 24

        ShapePath {
            fillColor: "transparent"
            strokeColor: icon.color
            strokeWidth: icon.thickness
            capStyle: ShapePath.RoundCap
            joinStyle: ShapePath.RoundJoin

            PathSvg {
                path: icon.path
            }
        }
    }
}
