import QtQuick

// A part of an answer that is selected as one character and copied as what it was written in. A drag that begins on it
// takes the whole of it; a click without one shows it larger, where it opens.
FocusScope {
    id: whole

    property string source // in Markdown
    property bool persistentSelection: false // it stays when the keyboard goes elsewhere
    property bool isSelected: false
    property bool opens: false // a larger view, when it is clicked
    property bool hasCaret: false // arrow keys go on from here
    property bool focusByPointer: false // which needs no ring
    property real pointerLayer: 0

    readonly property bool isWhole: true
    readonly property int length: 1 // selectable characters
    readonly property string selectedText: isSelected ? source : ""

    signal caretMoved(real y, real height)
    signal caretLeaving(int direction, bool selecting) // up (-1) or down (1)
    signal copyWanted(string text)
    signal openWanted

    function select(from: int, to: int): void {
        isSelected = from !== to
    }

    function selectAll(): void {
        isSelected = true
    }

    function deselect(): void {
        isSelected = false
    }

    function positionAt(x: real, y: real): int {
        return y < height / 2 ? 0 : 1
    }

    function positionToRectangle(position: int): rect {
        return Qt.rect(position > 0 ? width : 0, 0, 0, height)
    }

    function takeFocus(): void {
        forceActiveFocus(Qt.OtherFocusReason)
    }

    function takeCaret(): void {
        takeCaretAt(1)
        isSelected = true
    }

    function takeCaretAt(position: int): void {
        takeFocus()
        hasCaret = true
        caretMoved(0, height)
    }

    Keys.onPressed: event => {
        const back = event.key === Qt.Key_Left || event.key === Qt.Key_Up
        const forth = event.key === Qt.Key_Right || event.key === Qt.Key_Down
        const selecting = (event.modifiers & Qt.ShiftModifier) !== 0
        const opening = [Qt.Key_Return, Qt.Key_Enter, Qt.Key_Space].includes(event.key) && opens
        if (opening) {
            openWanted()
            event.accepted = true
        } else if (event.matches(StandardKey.Copy) && isSelected && !persistentSelection) {
            copyWanted(source)
            event.accepted = true
        } else if ((back || forth) && (hasCaret || selecting)) {
            hasCaret = true
            if (selecting && !isSelected && !persistentSelection)
                isSelected = true
            else
                caretLeaving(back ? -1 : 1, selecting)
            event.accepted = selecting || !activeFocus // somebody else has the caret now
        }
    }
    onActiveFocusChanged: {
        if (activeFocus)
            return
        hasCaret = false
        focusByPointer = false
        if (!persistentSelection)
            isSelected = false
    }

    // A small formula among words has none: the text beneath takes the pointer.
    Loader {
        active: whole.enabled
        anchors.fill: parent
        z: whole.pointerLayer

        // qmllint disable unqualified
        sourceComponent: MouseArea {
            property point pressedAt
            property bool drags: false

            // It takes the pointer for the part: what is around looks on and may select further.
            function positionToRectangle(position: int): rect {
                return whole.positionToRectangle(position)
            }

            objectName: "wholePointer"
            preventStealing: true

            onClicked: {
                if (!drags && whole.opens)
                    whole.openWanted()
            }
            onDoubleClicked: whole.selectAll()
            onPositionChanged: mouse => {
                drags = drags || Math.hypot(mouse.x - pressedAt.x, mouse.y - pressedAt.y) >= Application.styleHints.startDragDistance
                if (drags && !whole.persistentSelection)
                    whole.isSelected = true
            }
            onPressed: mouse => {
                drags = false
                pressedAt = Qt.point(mouse.x, mouse.y)
                whole.takeFocus()
                whole.focusByPointer = true
                whole.hasCaret = false
                whole.deselect()
            }
        }
        // qmllint enable unqualified
    }
}
