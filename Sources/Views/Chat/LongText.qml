import QtQuick
import Korvi.Views // the types written in C++

// A text of any length that can be selected and copied, and may grow at its end.
PartColumn {
    id: column

    required property string text
    property bool isGrowing: false
    property color color: Theme.t1

    signal caretMoved(real y, real height)

    function selectedText(): string {
        for (let i = 0; i < parts.count; ++i) {
            const selected = itemAt(i)?.selectedText
            if (selected)
                return selected
        }
        return ""
    }

    function selectAll(): void {
        takeFocus()
        itemAt(nearest())?.selectAll()
    }

    function takeFocus(): void {
        itemAt(nearest())?.takeFocus()
    }

    function takeCaret(): void {
        itemAt(nearest())?.takeCaret()
    }

    // The first part that is at hand.
    function nearest(): int {
        for (let i = 0; i < parts.count; ++i) {
            if (itemAt(i))
                return i
        }
        return -1
    }

    // qmllint disable unqualified
    delegate: SelectableText {
        id: edit

        required property int index
        required property string part

        // Where the text ends; named so that growth and a new width are noticed.
        readonly property rect end: {
            part
            contentHeight
            width
            return positionToRectangle(length)
        }

        color: column.color
        content: part
        objectName: "textPart"

        onCaretMoved: (y, height) => column.caretMoved(edit.y + y, height)

        StreamingDot {
            visible: column.isGrowing && edit.index === parts.count - 1
            x: edit.end.x + Theme.gap1
            y: edit.end.y + (edit.end.height - height) / 2
        }
    }
    // qmllint enable unqualified
    estimate: MessageHeights {
        answerWidth: column.width
        characterWidth: metrics.averageCharacterWidth
        lineHeight: Theme.leading(Theme.fontBody)
        textRole: "part"
    }
    model: TextParts {
        id: parts

        text: column.text
    }

    FontMetrics {
        id: metrics

        font.family: Theme.family
        font.pixelSize: Theme.fontBody
    }
}
