import QtQuick

Rectangle {
    Accessible.name: "Korvi запускается"
    Accessible.role: Accessible.Pane
    color: Theme.bg

    BrandMark {
        anchors.centerIn: parent
        size: Theme.px(64)
    }
}
