// The smallest screen: the temperature of the main zone, and a press on it.
import QtQuick 2.15
import QtQuick.Window 2.15
import CanBus 1.0

Window {
    visible: true
    width: 480
    height: 240
    Text {
        anchors.centerIn: parent
        font.pixelSize: 64
        opacity: ClimateState.stale ? 0.4 : 1
        text: ClimateState.mainTemp < 0 ? "--" : ClimateState.mainTemp
    }
    MouseArea {
        anchors.fill: parent
        onClicked: Climate.acBtn()
    }
}
