import QtQuick

// What the drawings of the guides are made on: a canvas of 320 by 300 units in the middle of the room there is.
Item {
    id: visual

    property color accent: Theme.acc
    default property alias parts: canvas.data

    readonly property real u: Math.min(width / 320, height / 300) // one unit
    readonly property color wash: Qt.tint(Theme.raise, Qt.alpha(accent, 0.14))
    readonly property color ink: Qt.tint(Theme.line2, Qt.alpha(Theme.t3, 0.25)) // lines that stand for text

    Accessible.ignored: true

    Item {
        id: canvas

        anchors.centerIn: parent
        height: 300 * visual.u
        width: 320 * visual.u
    }
}
