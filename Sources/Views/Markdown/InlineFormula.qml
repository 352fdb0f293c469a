import QtQuick

// A formula within a line of text.
Item {
    id: view

    required property string formula
    required property color color

    readonly property real ascent: label.baselineOffset

    signal sizeChanged

    height: label.implicitHeight
    width: label.implicitWidth

    Component.onCompleted: sizeChanged()
    onAscentChanged: sizeChanged()
    onHeightChanged: sizeChanged()
    onWidthChanged: sizeChanged()

    Label {
        id: label

        color: view.color
        font.family: Theme.monoFamily
        font.pixelSize: Theme.fontCode
        text: "$%1$".arg(view.formula)
    }
}
