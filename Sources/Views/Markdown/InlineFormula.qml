import QtQuick

// A formula within a line of text, over the room that the text keeps for it. The text beneath takes the pointer.
LaTeXView {
    id: view

    readonly property real ascent: baselineOffset

    signal sizeChanged

    enabled: false
    height: implicitHeight
    isBlock: false
    width: implicitWidth

    Component.onCompleted: sizeChanged()
    onAscentChanged: sizeChanged()
    onHeightChanged: sizeChanged()
    onWidthChanged: sizeChanged()
}
