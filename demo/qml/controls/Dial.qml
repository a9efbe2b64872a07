import QtQuick 2.15
import CanBus.HeadUnit 1.0
import "../style"

// The arc of a gauge in the colours of the head unit.
DialFace {
    color: Theme.accent
    trackColor: Theme.line
    handColor: Theme.text
    zeroColor: Theme.textDim
}
