import QtQuick
import Korvi.Views // the types written in C++

// A table of any length. Columns are as wide as what is in them, as far as there is room; what does not fit scrolls
// sideways. It is selected by whole rows: a position in it is that between two rows, and it is copied as tab-separated
// text.
Item {
    id: view

    required property var table // a MarkdownTable
    property bool isOpen: false // more rows may come
    property var kept: ({}) // what the reader did to it, for when it is made again
    property bool persistentSelection: false // it stays when the keyboard goes elsewhere

    property int selectionStart: 0
    property int selectionEnd: 0
    readonly property string selectedText: {
        view.table
        return tableRows.asText(selectionStart, selectionEnd)
    }
    readonly property int length: tableRows.count
    property bool focusByPointer: false
    // Where each column begins.
    readonly property var offsets: {
        const starts = [0]
        for (const width of tableRows.columnWidths)
            starts.push(starts[starts.length - 1] + width)
        return starts
    }

    signal caretMoved(real y, real height)
    signal copyWanted(string text)

    function select(from: int, to: int): void {
        const start = Math.max(0, Math.min(from, to))
        selectionEnd = Math.min(length, Math.max(from, to))
        selectionStart = start
    }

    function selectAll(): void {
        takeFocus()
        select(0, length)
    }

    function deselect(): void {
        select(0, 0)
    }

    // The border between rows that is nearest to it.
    function positionAt(x: real, y: real): int {
        const at = y - column.y
        const row = column.partAt(at)
        if (row < 0 || at <= 0)
            return 0
        const top = column.positionOf(row)
        return at - top > (column.positionOf(row + 1) - top) / 2 ? row + 1 : row
    }

    function positionToRectangle(position: int): rect {
        const row = Math.max(0, Math.min(position, length - 1))
        const top = column.positionOf(row)
        return Qt.rect(0, column.y + (position < length ? top : column.positionOf(length)), 0, column.positionOf(row + 1) - top)
    }

    function sourceAt(x: real, y: real): var {
        return { kind: "table", text: tableRows.asText(0, length) }
    }

    function takeFocus(): void {
        focusByPointer = true
        forceActiveFocus(Qt.OtherFocusReason)
    }

    function takeCaret(): void {
        focusByPointer = false
        forceActiveFocus(Qt.TabFocusReason)
    }

    function copy(): void {
        copyWanted(selectionEnd > selectionStart ? selectedText : tableRows.asText(0, length))
    }

    Accessible.name: "Таблица, строк: " + Math.max(0, length - 1)
    Accessible.role: Accessible.Table
    activeFocusOnTab: true
    implicitHeight: scroll.height

    Keys.onLeftPressed: event => event.accepted = scroll.scrollBy(-scroll.step)
    Keys.onRightPressed: event => event.accepted = scroll.scrollBy(scroll.step)
    Keys.onPressed: event => {
        if (event.matches(StandardKey.Copy) && !persistentSelection)
            copy()
        else if (event.matches(StandardKey.SelectAll) && !(persistentSelection || selectionStart === 0 && selectionEnd === length))
            select(0, length) // and all that is around it when it is selected already
        else
            return
        event.accepted = true
    }
    onActiveFocusChanged: {
        if (activeFocus)
            return
        focusByPointer = false
        if (!persistentSelection)
            deselect()
    }

    HoverHandler {
        id: hover
    }
    SidewaysArea {
        id: scroll

        height: column.height + (overflows ? Theme.gap3 : 0)
        kept: view.kept
        step: Theme.px(48)
        wanted: tableRows.totalWidth
        width: view.width

        MouseArea {
            property int pressedAt: 0

            // It takes the pointer for the table: what is around looks on and may select further.
            function positionToRectangle(position: int): rect {
                return view.positionToRectangle(position)
            }

            height: column.height
            preventStealing: true
            width: scroll.contentWidth

            onPositionChanged: mouse => {
                if (view.persistentSelection)
                    return // it goes beyond the table
                view.select(pressedAt, view.positionAt(mouse.x, mouse.y))
                view.caretMoved(mouse.y, 0)
            }
            onPressed: mouse => {
                view.takeFocus()
                if (!(mouse.modifiers & Qt.ShiftModifier)) {
                    pressedAt = view.positionAt(mouse.x, mouse.y)
                    view.deselect()
                } else {
                    view.select(pressedAt, view.positionAt(mouse.x, mouse.y))
                }
            }
        }
        PartColumn {
            id: column

            height: implicitHeight
            model: tableRows
            width: scroll.contentWidth

            // qmllint disable unqualified
            delegate: TableRow {
                offsets: view.offsets
                rows: tableRows
                selected: index >= view.selectionStart && index < view.selectionEnd
            }
            // qmllint enable unqualified
            estimate: TableHeights {
                aroundLines: Theme.cellPadding * 2 + Theme.hairline
                aroundText: tableRows.around
                characterWidth: Theme.fontBody * 0.58
                columnWidths: tableRows.columnWidths
                lineHeight: Theme.leading(Theme.fontBody)
            }
        }
    }
    FocusRing {
        anchors.margins: -Theme.gap1
        around: Theme.gap1
        shown: view.activeFocus && !view.focusByPointer
    }
    Rectangle {
        readonly property bool shown: hover.hovered || view.activeFocus || button.visualFocus || button.hasCopied

        anchors.right: parent.right
        border.color: Theme.line
        color: Theme.raise
        height: button.height + Theme.hairline * 2
        opacity: shown ? 1 : 0
        radius: Theme.radiusRow
        visible: view.length > 0
        width: button.width + Theme.hairline * 2
        y: Theme.gap1

        Behavior on opacity { NumberAnimation { duration: Theme.quick } }

        CopyButton {
            id: button

            anchors.centerIn: parent
            objectName: "copyTableButton"

            onClicked: view.copyWanted(tableRows.asText(0, view.length))
        }
    }
    TableRows {
        id: tableRows

        around: Theme.gap1 + Theme.gap3
        available: view.width
        cellFont.family: Theme.family
        cellFont.pixelSize: Theme.fontBody
        codeBackground: Theme.icodebg
        codeColor: Theme.icode
        codeFont.family: Theme.monoFamily
        codeFont.pixelSize: Theme.fontInlineCode
        headerFont.family: Theme.family
        headerFont.pixelSize: Theme.fontBody
        headerFont.weight: Font.DemiBold
        readable: Theme.px(200)
        table: view.table
        widest: Theme.px(340)
    }
}
