import QtQuick
import Korvi.Views // the types written in C++

// A symbol in a round or rounded field.
Rectangle {
    id: badge

    required property real size
    required property string symbol
    property color tint: Theme.t2

    border.color: Theme.line2
    color: Theme.raise
    height: size
    radius: size / 2
    width: size

    Symbol {
        anchors.centerIn: parent
        color: badge.tint
        name: badge.symbol
        size: Math.round(badge.size * 0.46)
    }
}
