import QtQuick
import Korvi.Views // the types written in C++

// A site's icon, and a globe where it has none.
Item {
    id: favicon

    required property string source

    Accessible.ignored: true
    implicitHeight: Theme.icon
    implicitWidth: Theme.icon

    WebPicture {
        id: picture

        anchors.fill: parent
        longestSide: 64
        radius: Theme.gap1 / 2
        source: favicon.source
    }
    Symbol {
        anchors.centerIn: parent
        color: Theme.t3
        name: "globe"
        size: favicon.height
        visible: picture.status !== WebPicture.Ready
    }
}
