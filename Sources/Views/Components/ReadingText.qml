import QtQuick
import Korvi.Views // the types written in C++

// Text that can be selected and copied. The pointer selects without a caret, so that the arrow keys stay with whoever
// scrolls; takeCaret() puts one in for the keyboard.
TextEdit {
    id: edit

    property bool hasCaret: false
    property bool copiesItself: true // otherwise copyWanted() says that the reader wants it

    signal caretMoved(real y, real height) // by the keyboard, or by a pointer that selects
    signal copyWanted(string text)
    signal caretLeaving(int direction, bool selecting) // over the beginning (-1) or the end (1)

    property var kept: null // what was selected before the text changes

    function takeFocus(): void {
        forceActiveFocus(Qt.OtherFocusReason)
    }

    function takeCaret(): void {
        takeCaretAt(0)
    }

    function takeCaretAt(position: int): void {
        takeFocus()
        hasCaret = true
        cursorPosition = position
        caretMoved(cursorRectangle.y, cursorRectangle.height)
    }

    // What is selected to the very end would take in all that comes.
    function keepSelection(): void {
        kept = { start: selectionStart, end: selectionEnd, position: cursorPosition }
    }

    function restoreSelection(): void {
        if (kept && kept.end > kept.start)
            select(kept.position === kept.start ? kept.end : kept.start, kept.position)
        else if (kept && hasCaret)
            cursorPosition = kept.position
        kept = null
    }

    Accessible.role: Accessible.StaticText
    activeFocusOnPress: true
    color: Theme.t1
    cursorVisible: hasCaret && activeFocus
    font.family: Theme.family
    font.pixelSize: Theme.fontBody
    readOnly: true
    renderType: Text.NativeRendering
    selectByKeyboard: hasCaret
    selectByMouse: true
    selectedTextColor: color
    selectionColor: Theme.selection
    textFormat: TextEdit.PlainText
    wrapMode: TextEdit.Wrap

    Keys.onPressed: event => {
        const back = event.key === Qt.Key_Left || event.key === Qt.Key_Up
        const forth = event.key === Qt.Key_Right || event.key === Qt.Key_Down
        event.accepted = !copiesItself && event.matches(StandardKey.Copy)
        if (event.accepted)
            copyWanted(selectedText)
        if (!back && !forth)
            return
        const selecting = (event.modifiers & Qt.ShiftModifier) !== 0
        if (selecting)
            hasCaret = true // takes the selection on from where the pointer left it
        if (!hasCaret)
            return
        const border = back ? 0 : length
        const vertical = event.key === Qt.Key_Up || event.key === Qt.Key_Down
        if (vertical ? cursorRectangle.y === positionToRectangle(border).y : cursorPosition === border) {
            caretLeaving(back ? -1 : 1, selecting)
            event.accepted = !activeFocus // somebody else has the caret now
        }
    }
    onActiveFocusChanged: {
        if (!activeFocus)
            hasCaret = false
    }
    onCursorRectangleChanged: {
        if (hasCaret || pointer.active)
            caretMoved(cursorRectangle.y, cursorRectangle.height)
    }

    PointHandler {
        id: pointer
    }
    ShortcutPassage {
        through: edit
    }
}
