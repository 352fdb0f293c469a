import QtQuick
import Korvi.Views // the types written in C++

// Text that can be selected and copied, and may grow at its end without being laid out anew. The pointer selects without
// a caret, so that the arrow keys stay with whoever scrolls; takeCaret() puts one in for the keyboard.
TextEdit {
    id: edit

    property alias content: growing.text
    property bool hasCaret: false
    readonly property real lineDistance: Math.max(0, Theme.leading(font.pixelSize) - Math.ceil(metrics.height)) // lines are whole pixels

    signal caretMoved(real y, real height) // by the keyboard, or by a pointer that selects

    function takeFocus(): void {
        forceActiveFocus(Qt.OtherFocusReason)
    }

    function takeCaret(): void {
        takeFocus()
        hasCaret = true
        cursorPosition = 0
        caretMoved(cursorRectangle.y, cursorRectangle.height)
    }

    Accessible.name: content
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
        const arrows = [Qt.Key_Left, Qt.Key_Right, Qt.Key_Up, Qt.Key_Down]
        if (event.modifiers & Qt.ShiftModifier && arrows.includes(event.key))
            hasCaret = true // takes the selection on from where the pointer left it
        event.accepted = false
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
    FontMetrics {
        id: metrics

        font: edit.font
    }
    GrowingText {
        id: growing

        // What is selected to the very end would take in all that comes.
        property int selectionStart: 0
        property int selectionEnd: 0

        document: edit.textDocument

        onAboutToGrow: {
            selectionStart = edit.selectionStart
            selectionEnd = edit.selectionEnd
        }
        onGrown: {
            if (selectionEnd > selectionStart && edit.selectionEnd > selectionEnd)
                edit.select(selectionStart, selectionEnd)
        }
    }
    ShortcutPassage {
        through: edit
    }
    LineSpacing {
        distance: edit.lineDistance
        document: edit.textDocument
    }
}
