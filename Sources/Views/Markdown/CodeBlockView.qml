import QtQuick
import Korvi.Views // the types written in C++

// A piece of code of any length that may grow at its end. It is laid out in parts, of which only those in view exist;
// positions in it count through all of them.
Item {
    id: view

    required property var code // a SharedText, or a string
    property string language: ""
    property bool isOpen: false // more may come
    property bool wraps: false
    property var kept: ({}) // what the reader did to it, for when it is made again
    property bool persistentSelection: false // it stays when the keyboard goes elsewhere

    property int selectionStart: 0
    property int selectionEnd: 0
    readonly property bool selectionSpansParts: codeParts.partOf(selectionStart) !== codeParts.partOf(selectionEnd)
    readonly property string selectedText: {
        codeParts.length
        return between(selectionStart, selectionEnd)
    }
    readonly property int length: codeParts.length
    readonly property CodePart caretPart: {
        const part = Window.activeFocusItem as CodePart
        return part?.parts === codeParts && part.hasCaret ? part : null
    }
    readonly property bool hasCaret: caretPart !== null
    readonly property int cursorPosition: caretPart ? codeParts.startOf(caretPart.index) + caretPart.cursorPosition : selectionEnd
    readonly property real characterWidth: metrics.advanceWidth("0")

    signal caretMoved(real y, real height)
    signal copyWanted(string text)
    signal allWanted
    signal spanCopyWanted // by the keyboard: this is only a part of what is selected
    signal caretLeaving(int direction, bool selecting) // over the beginning (-1) or the end (1)

    function between(from: int, to: int): string {
        return codeParts.slice(from, to)
    }

    function select(from: int, to: int): void {
        const start = Math.max(0, Math.min(from, to))
        selectionEnd = Math.min(length, Math.max(from, to))
        selectionStart = start
    }

    function selectAll(): void {
        takeFocus()
        select(0, length)
    }

    // By the keyboard: the code, and all that is around it when it is selected already.
    function selectAllFirst(): void {
        if (persistentSelection || selectionStart === 0 && selectionEnd === length)
            allWanted()
        else
            select(0, length)
    }

    function deselect(): void {
        select(0, 0)
    }

    function positionAt(x: real, y: real): int {
        const at = column.mapFromItem(view, x, y)
        const part = column.partAt(at.y)
        const item = column.itemAt(part)
        return part < 0 ? 0 : codeParts.startOf(part) + (item ? item.positionAt(at.x, at.y - item.y) : 0) // qmllint disable
    }

    function positionToRectangle(position: int): rect {
        const part = codeParts.partOf(position)
        const item = column.itemAt(part)
        const place = item ? item.positionToRectangle(position - codeParts.startOf(part)) // qmllint disable
            : Qt.rect(0, 0, 0, estimate.lineHeight)
        return column.mapToItem(view, place.x, column.positionOf(Math.max(0, part)) + place.y, place.width, place.height)
    }

    function sourceAt(x: real, y: real): var {
        return { kind: "code", text: String(code) }
    }

    function takeFocus(): void {
        nearest()?.takeFocus() // qmllint disable
    }

    function takeCaret(): void {
        nearest()?.takeCaret() // qmllint disable
    }

    function takeCaretAt(position: int): void {
        const part = codeParts.partOf(position)
        column.showPart(part)?.takeCaretAt(position - codeParts.startOf(part)) // qmllint disable
    }

    // The caret goes over the border of a part; it selects within one only.
    function step(part: int, direction: int, selecting: bool): void {
        const next = part + direction
        if (next < 0 || next >= codeParts.count)
            caretLeaving(direction, selecting)
        else if (!selecting)
            column.showPart(next)?.takeCaretAt(direction > 0 ? 0 : codeParts.lengthOf(next)) // qmllint disable
    }

    // The first part that is at hand.
    function nearest(): Item {
        for (let part = 0; part < codeParts.count; ++part) {
            if (column.itemAt(part))
                return column.itemAt(part)
        }
        return null
    }

    // The pointer selects from a character of one part to that place, below its top left corner.
    function selectTo(part: CodePart, from: int, x: real, y: real): void {
        const at = part.y + y
        const next = column.partAt(at)
        const other = column.itemAt(next)
        if (persistentSelection || !other || next === part.index && !selectionSpansParts)
            return // it goes beyond the code, or the part selects by itself
        select(codeParts.startOf(part.index) + from, codeParts.startOf(next) + other.positionAt(x, at - other.y)) // qmllint disable
        caretMoved(column.mapToItem(view, 0, at).y, 0)
    }

    Accessible.name: language.length > 0 ? "Код: " + language : "Код"
    Accessible.role: Accessible.Grouping
    implicitHeight: scroll.y + scroll.height

    Keys.onLeftPressed: event => event.accepted = scroll.scrollBy(-scroll.step)
    Keys.onRightPressed: event => event.accepted = scroll.scrollBy(scroll.step)
    Keys.onPressed: event => {
        event.accepted = event.matches(StandardKey.Copy) && selectionEnd > selectionStart && !persistentSelection
        if (event.accepted)
            copyWanted(selectedText)
    }

    Component.onCompleted: wraps = kept.wraps ?? wraps

    Rectangle {
        anchors.fill: parent
        border.color: Theme.line
        color: Theme.code
        radius: Theme.radiusCard
    }
    CodeHeader {
        id: header

        canWrap: scroll.overflows
        language: view.language
        width: parent.width
        wraps: view.wraps

        onCopyWanted: view.copyWanted(String(view.code))
        onWrapToggled: {
            view.wraps = !view.wraps
            view.kept.wraps = view.wraps
        }
    }
    SidewaysArea {
        id: scroll

        readonly property real widest: codeParts.columns * view.characterWidth

        height: column.height + Theme.gap4 * 2
        kept: view.kept
        step: view.characterWidth * 8
        wanted: view.wraps ? 0 : Math.ceil(widest) + Theme.gap4 * 2
        width: view.width - Theme.hairline * 2
        x: Theme.hairline
        y: header.height

        PartColumn {
            id: column

            height: implicitHeight
            model: codeParts
            // Not that of the longest line: a part is laid out again for each width.
            width: view.wraps ? scroll.width - Theme.gap4 * 2 : Math.max(scroll.width, Math.pow(2, Math.ceil(Math.log2(scroll.widest + 1))))
            x: Theme.gap4 - scroll.x
            y: Theme.gap4

            // qmllint disable unqualified
            delegate: CodePart {
                id: edit

                parts: codeParts
                persistentSelection: view.persistentSelection || view.selectionSpansParts
                share: {
                    const start = codeParts.startOf(index)
                    return Qt.point(view.selectionStart - start, view.selectionEnd - start)
                }
                wrapMode: view.wraps ? TextEdit.Wrap : TextEdit.NoWrap

                Keys.onPressed: event => {
                    if (event.matches(StandardKey.Copy) && view.persistentSelection)
                        view.spanCopyWanted()
                    else if (event.matches(StandardKey.Copy) && view.selectionEnd > view.selectionStart)
                        view.copyWanted(view.selectedText)
                    else if (event.matches(StandardKey.SelectAll))
                        view.selectAllFirst()
                    else
                        return
                    event.accepted = true
                }
                onCaretLeaving: (direction, selecting) => view.step(index, direction, selecting)
                onCaretMoved: (y, height) => {
                    scroll.reveal(cursorRectangle.x, Math.min(view.characterWidth * 4, scroll.width / 4), scroll.width - Theme.gap4 * 2)
                    view.caretMoved(column.mapToItem(view, 0, edit.y + y).y, height)
                }
                onSelectionMade: (from, to) => {
                    const start = codeParts.startOf(index)
                    if (from < to)
                        view.select(start + from, start + to)
                    else if (!view.selectionSpansParts)
                        view.deselect()
                }
                onSelectionDragged: (from, x, y) => view.selectTo(edit, from, x, y)
                onSelectionStarted: view.deselect()
            }
            // qmllint enable unqualified
            estimate: CodeHeights {
                id: estimate

                lineHeight: Theme.leading(Theme.fontBody)
                wrapColumns: view.wraps ? column.width / view.characterWidth : 0
            }
        }
    }
    CodeParts {
        id: codeParts

        code: view.code
        isOpen: view.isOpen
        language: view.language

        onModelReset: view.deselect()
    }
    FontMetrics {
        id: metrics

        font.family: Theme.monoFamily
        font.pixelSize: Theme.fontBody
    }
}
