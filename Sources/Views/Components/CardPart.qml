import QtQuick

// A part of an answer that is not text: the selection passes over it.
FocusScope {
    property bool isOpen: false // the end of an answer that still grows
    property bool persistentSelection: false

    readonly property int length: 0
    readonly property string selectedText: ""

    signal caretMoved(real y, real height)
    signal copyWanted(string text)

    function positionAt(x: real, y: real): int {
        return 0
    }

    function positionToRectangle(position: int): rect {
        return Qt.rect(0, 0, 0, height)
    }

    function select(from: int, to: int): void {}

    function selectAll(): void {}

    function deselect(): void {}

    function takeFocus(): void {
        forceActiveFocus(Qt.TabFocusReason)
    }

    function takeCaret(): void {
        takeFocus()
        caretMoved(0, height)
    }
}
