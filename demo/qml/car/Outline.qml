import QtQuick 2.15
import QtQuick.Shapes 1.15

// A filled outline, given as an SVG path.
ShapePath {
    property alias path: svg.path

    joinStyle: ShapePath.RoundJoin
    strokeWidth: -1

    PathSvg {
        id: svg
    }
}
