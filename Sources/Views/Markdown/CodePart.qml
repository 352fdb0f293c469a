import QtQuick
import Korvi.Views // the types written in C++

// Some hundred lines of a code block.
SelectableText {
    id: edit

    required property int index
    required property string part
    required property CodeParts parts
    required property point share // what is selected of it: the first character, and the one after the last

    property bool sharing: false

    signal selectionMade(int from, int to) // by the reader

    function takeShare(): void {
        if (selectionStart === share.x && selectionEnd === share.y)
            return
        sharing = true
        if (share.x < share.y)
            select(share.x, share.y)
        else
            deselect()
        sharing = false
    }

    Accessible.name: part
    content: part
    font.family: Theme.monoFamily
    font.preferShaping: false // no ligatures: code is read character by character
    objectName: "codePart"
    tabStopDistance: 4 * advance.advanceWidth(" ")

    Component.onCompleted: takeShare()
    onSelectionEndChanged: {
        if (!sharing)
            selectionMade(selectionStart, selectionEnd)
    }
    onSelectionStartChanged: {
        if (!sharing)
            selectionMade(selectionStart, selectionEnd)
    }
    onShareChanged: takeShare()

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
