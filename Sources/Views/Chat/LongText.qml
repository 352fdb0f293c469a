import QtQuick
import Korvi.Views // the types written in C++

// A text of any length that can be selected and copied, and may grow at its end.
PartColumn {
    id: column

    required property string text
    property bool isGrowing: false
    property color color: Theme.t1

    signal caretMoved(real y, real height)
    signal copyWanted(string text)

    // What is selected beyond the borders of one part: { firstPart, from, lastPart, to }.
    property var span: null

    function selectedText(): string {
        if (span)
            return parts.between(span.firstPart, span.from, span.lastPart, span.to)
        for (let i = 0; i < parts.count; ++i) {
            const selected = itemAt(i)?.selectedText
            if (selected)
                return selected
        }
        return ""
    }

    function deselect(): void {
        span = null
        for (let i = 0; i < parts.count; ++i)
            itemAt(i)?.deselect()
    }

    function selectAll(): void {
        takeFocus()
        if (parts.count > 1)
            span = { firstPart: 0, from: 0, lastPart: parts.count - 1, to: parts.lengthOf(parts.count - 1) }
        else
            itemAt(0)?.selectAll()
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

        persistentSelection: column.span !== null

        // Its share of what is selected over several parts.
        function selectShare(): void {
            const span = column.span
            if (!span || index < span.firstPart || index > span.lastPart)
                deselect()
            else
                select(index === span.firstPart ? span.from : 0, index === span.lastPart ? span.to : length)
        }

        Component.onCompleted: selectShare()
        Keys.onPressed: event => {
            if (column.span && event.matches(StandardKey.Copy)) {
                column.copyWanted(column.selectedText())
                event.accepted = true
            }
        }
        onCaretMoved: (y, height) => column.caretMoved(edit.y + y, height)

        Connections {
            function onSpanChanged() {
                edit.selectShare()
            }

            target: column
        }

        // The pointer left this part while it selects.
        PointHandler {
            id: drag

            property int position: 0 // where it was pressed

            // After the part itself has selected what it takes for the end.
            function follow(): void {
                const y = edit.y + point.position.y
                const part = column.partAt(y)
                const other = column.itemAt(part)
                if (!active || !other || part === edit.index && !column.span)
                    return
                const at = other.positionAt(point.position.x, y - other.y)
                const back = part < edit.index || part === edit.index && at < position
                column.span = back ? { firstPart: part, from: at, lastPart: edit.index, to: position }
                    : { firstPart: edit.index, from: position, lastPart: part, to: at }
                column.caretMoved(y, 0)
            }

            onActiveChanged: {
                if (active) {
                    column.span = null
                    position = edit.positionAt(point.pressPosition.x, point.pressPosition.y)
                }
            }
            onPointChanged: Qt.callLater(follow) // qmllint disable
        }
        // qmllint disable unqualified
        StreamingDot {
            visible: column.isGrowing && edit.index === parts.count - 1
            x: edit.end.x + Theme.gap1
            y: edit.end.y + (edit.end.height - height) / 2
        }
    }
    // qmllint enable unqualified
    estimate: MessageHeights {
        readonly property string sample: "Обычный русский текст, по которому меряют ширину."

        answerWidth: column.width
        characterWidth: metrics.advanceWidth(sample) / sample.length
        lineHeight: Theme.leading(Theme.fontBody)
        textRole: "part"
    }
    model: TextParts {
        id: parts

        text: column.text

        onModelReset: column.span = null
    }

    FontMetrics {
        id: metrics

        font.family: Theme.family
        font.pixelSize: Theme.fontBody
    }
}
