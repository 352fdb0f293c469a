import QtQuick
import Korvi.Views // the types written in C++

// A plain text of any length that can be selected and copied, and may grow at its end.
PartColumn {
    id: column

    required property string text
    property color color: Theme.t1

    signal caretMoved(real y, real height)
    signal copyWanted(string text)

    function selectedText(): string {
        return selection.selectedText()
    }

    function deselect(): void {
        selection.deselect()
    }

    function selectAll(): void {
        selection.selectAll()
    }

    function takeCaret(): void {
        selection.takeCaret()
    }

    // qmllint disable unqualified
    delegate: SelectableText {
        id: edit

        required property int index
        required property string part

        color: column.color
        content: part
        copiesItself: false
        objectName: "textPart"

        onCaretMoved: (y, height) => column.caretMoved(edit.y + y, height)
        onCopyWanted: column.copyWanted(column.selectedText())
    }
    // qmllint enable unqualified
    estimate: MessageHeights {
        answerWidth: column.width
        characterWidth: character.width
        isPlain: true
        lineHeight: Theme.leading(Theme.fontBody)
        textRole: "part"
    }
    model: TextParts {
        id: parts

        text: column.text

        onModelReset: selection.span = null
    }

    PartSelection {
        id: selection

        column: column
        model: parts

        onCaretMoved: (y, height) => column.caretMoved(y, height)
    }
    AverageCharacter {
        id: character
    }
}
