import QtQuick
import Korvi.Views // the types written in C++

// Some hundred lines of a code block.
SelectableText {
    id: edit

    required property int index
    required property string part
    required property CodeParts parts
    // What is selected of all the code: the first character and the one after the last, counted from this part's first.
    required property point share

    property bool sharing: true // what changes then is not the reader's doing

    signal selectionMade(int from, int to) // by the reader
    signal selectionStarted // by the pointer
    // From that character to a place below its top left corner, which may be in another part.
    signal selectionDragged(int from, real x, real y)

    function takeShare(): void {
        const from = Math.max(0, Math.min(length, share.x))
        const to = Math.max(0, Math.min(length, share.y))
        sharing = true
        if (from >= to)
            deselect()
        else if (selectionStart !== from || selectionEnd !== to)
            select(from, to)
        sharing = false
    }

    function tell(): void {
        if (!sharing && (selectionStart < selectionEnd || (share.x < length && share.y > 0)))
            selectionMade(selectionStart, selectionEnd)
    }

    Accessible.name: part
    content: part
    font.family: Theme.monoFamily
    font.preferShaping: false // no ligatures: code is read character by character
    objectName: "codePart"
    tabStopDistance: 4 * advance.advanceWidth(" ")

    Component.onCompleted: takeShare()
    onSelectionEndChanged: tell()
    onSelectionStartChanged: tell()
    onShareChanged: takeShare()

    PointHandler {
        id: drag

        property int from: 0

        // After the text itself has selected what it takes for the end.
        function follow(): void {
            if (active)
                edit.selectionDragged(from, point.position.x, point.position.y)
        }

        onActiveChanged: {
            if (!active)
                return
            from = edit.positionAt(point.pressPosition.x, point.pressPosition.y)
            edit.selectionStarted()
        }
        onPointChanged: Qt.callLater(follow) // qmllint disable
    }
    FontMetrics {
        id: advance

        font: edit.font
    }
    CodeColours {
        comment: Theme.codeComment
        document: edit.textDocument
        keyword: Theme.codeKeyword
        number: Theme.codeNumber
        part: edit.index
        parts: edit.parts
        string: Theme.codeString
        type: Theme.codeType
    }
}
