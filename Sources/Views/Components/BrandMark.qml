import QtQuick
import Korvi.Views // the types written in C++

Rectangle {
    property real size: Theme.px(56)

    Accessible.ignored: true
    color: Theme.acc
    implicitHeight: size
    implicitWidth: size
    radius: size * 2 / 7

    Symbol {
        anchors.centerIn: parent
        color: Theme.onacc
        name: "sparkles"
        size: Math.round(parent.size * 0.29) * 2
    }
}
