import QtQuick
import Korvi.Views // the types written in C++

// Selects over all parts of a PartColumn, by the pointer and by the keyboard. Within one part, the part itself selects.
//
// A part takes part in it by what SelectableText has: length, selectedText, positionAt(), select(), deselect(),
// persistentSelection, takeFocus() and, to be entered by the keyboard, takeCaretAt() and caretLeaving(). One that isWhole
// is one character; the keyboard goes there only while it selects.
QtObject {
    id: selection

    required property PartColumn column
    required property var model // count, lengthOf(part), between(firstPart, from, lastPart, to)

    // What is selected beyond the borders of one part: { anchorPart, anchor, headPart, head }; the head moves.
    property var span: null

    property bool isDragging: false
    property int pressedPart: -1
    property int pressedAt: 0
    property bool pressedWhole: false

    signal caretMoved(real y, real height)

    // Not a property: it has to be right in onSpanChanged already.
    function isBackward(): bool {
        return span !== null
            && (span.headPart < span.anchorPart || span.headPart === span.anchorPart && span.head < span.anchor)
    }

    function selectedText(): string {
        if (span)
            return isBackward() ? model.between(span.headPart, span.head, span.anchorPart, span.anchor)
                : model.between(span.anchorPart, span.anchor, span.headPart, span.head)
        for (const part of column.partsAtHand()) {
            const item = column.itemAt(part)
            if (!item?.selectedText)
                continue
            return item.selectionEnd === undefined ? item.selectedText
                : model.between(part, item.selectionStart, part, item.selectionEnd)
        }
        return ""
    }

    function deselect(): void {
        span = null
        for (const part of column.partsAtHand())
            column.itemAt(part)?.deselect?.()
    }

    function selectAll(): void {
        takeFocus()
        if (model.count > 1)
            span = { anchorPart: 0, anchor: 0, headPart: model.count - 1, head: model.lengthOf(model.count - 1) }
        else
            column.itemAt(0)?.selectAll?.()
    }

    function takeFocus(): void {
        column.itemAt(nearest())?.takeFocus()
    }

    function takeCaret(): void {
        column.itemAt(nearest())?.takeCaret()
    }

    // The first part that is at hand.
    function nearest(): int {
        for (const part of column.partsAtHand()) {
            if (column.itemAt(part)?.takeCaret)
                return part
        }
        return -1
    }

    // The share of a part in what is selected over several.
    function apply(part: int, item: var): void {
        if (item.persistentSelection === undefined)
            return
        item.persistentSelection = span !== null
        const backward = isBackward()
        const first = backward ? span.headPart : span?.anchorPart
        const last = backward ? span.anchorPart : span?.headPart
        if (!span || part < first || part > last) {
            item.deselect()
            return
        }
        const from = part !== first ? 0 : backward ? span.head : span.anchor
        const to = part !== last ? item.length : backward ? span.anchor : span.head
        if (part === span.headPart && backward)
            item.select(to, from) // the caret stands where the selection goes on
        else
            item.select(from, to)
    }

    // Where a selection began that goes on from there.
    function anchorOf(item: var, direction: int): int {
        if (item.isWhole)
            return direction > 0 ? 0 : item.length
        return item.cursorPosition === item.selectionStart ? item.selectionEnd : item.selectionStart
    }

    // The caret goes over the border of a part. Says whether there was somewhere to go.
    function step(part: int, direction: int, selecting: bool): bool {
        const leaving = column.itemAt(part)
        let next = part + direction
        let entered = null
        for (; next >= 0 && next < model.count && !entered; next += direction) {
            const item = column.showPart(next)
            if (item?.takeCaretAt && (selecting || !item.isWhole))
                entered = item
        }
        if (!entered)
            return false
        next -= direction
        const anchorPart = span?.anchorPart ?? part
        const anchor = span?.anchor ?? anchorOf(leaving, direction)
        const border = direction > 0 ? 0 : entered.length
        const head = entered.isWhole ? entered.length - border : border
        span = null
        if (selecting && next !== anchorPart)
            span = { anchorPart: anchorPart, anchor: anchor, headPart: next, head: head }
        entered.takeCaretAt(head)
        if (span)
            apply(next, entered)
        else if (selecting)
            entered.select(anchor, head)
        return true
    }

    // The caret moved within a part.
    function follow(part: int): void {
        const item = column.itemAt(part)
        if (!span || isDragging || !item?.hasCaret || item.isWhole || part !== span.headPart || item.cursorPosition === span.head)
            return
        const border = isBackward() ? item.length : 0
        if (item.selectionStart === item.selectionEnd && item.cursorPosition !== border)
            span = null
        else
            span = Object.assign({}, span, { head: item.cursorPosition })
    }

    function press(x: real, y: real): void {
        span = null
        pressedPart = column.partAt(y)
        const item = column.itemAt(pressedPart)
        isDragging = item?.positionAt !== undefined
        if (isDragging)
            pressedAt = item.positionAt(x - item.x, y - item.y)
        pressedWhole = item?.isWhole ?? false
    }

    // After the part that was pressed has itself selected what it takes for the end.
    function drag(x: real, y: real): void {
        const part = column.partAt(y)
        const other = column.itemAt(part)
        if (!isDragging || !other?.positionAt || part === pressedPart && !span)
            return
        const anchor = !pressedWhole ? pressedAt : part < pressedPart ? 1 : 0
        const head = pressedWhole && part === pressedPart ? 1 : other.positionAt(x - other.x, y - other.y)
        span = { anchorPart: pressedPart, anchor: anchor, headPart: part, head: head }
        caretMoved(y, 0)
    }

    onSpanChanged: {
        for (const part of column.partsAtHand())
            apply(part, column.itemAt(part))
    }

    readonly property Connections watching: Connections {
        function onPartMade(part, item) {
            if (item.caretLeaving) {
                item.caretLeaving.connect((direction, selecting) => selection.step(item.index, direction, selecting))
                item.caretMoved.connect(() => selection.follow(item.index))
            }
            if (selection.span)
                selection.apply(part, item)
        }

        function onPointerMoved(x, y) {
            Qt.callLater(selection.drag, x, y) // qmllint disable
        }

        function onPointerPressed(x, y) {
            selection.press(x, y)
        }

        function onPointerReleased() {
            selection.isDragging = false
        }

        target: selection.column
    }
}
