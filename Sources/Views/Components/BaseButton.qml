import QtQuick
import QtQuick.Templates as T

// What every button has: keys, focus ring, accessible name. A click leaves the focus where it was.
T.AbstractButton {
    id: control

    property real radius: Theme.radiusRow
    property string hint // shown as a tool tip
    property bool focusShown: visualFocus
    property bool filled: false // with the accent or another strong colour

    Accessible.description: hint
    Accessible.name: text
    Accessible.role: Accessible.Button
    focusPolicy: Qt.TabFocus // qmllint disable
    font.family: Theme.family
    font.pixelSize: Theme.fontBody
    hoverEnabled: true
    implicitHeight: implicitContentHeight + topPadding + bottomPadding
    implicitWidth: implicitContentWidth + leftPadding + rightPadding

    Keys.onEnterPressed: clicked()
    Keys.onReturnPressed: clicked()

    FocusRing {
        apart: control.filled
        around: control.radius
        shown: control.focusShown
        z: 1
    }

    Loader {
        active: control.hint.length > 0 && (control.hovered || control.visualFocus)
        anchors.fill: parent
        // qmllint disable unqualified
        sourceComponent: BubbleToolTip {
            text: control.hint
            visible: true
        }
        // qmllint enable unqualified
    }
}
