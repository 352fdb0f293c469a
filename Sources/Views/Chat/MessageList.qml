import QtQuick
import QtQuick.Templates as T
import Korvi.Views // the types written in C++

// The messages, oldest first. The end of the list is held in view while it grows; reading back lets go of it, coming
// back to the end takes it up again. After a send the new turn is given a whole screen, so that the question stands at
// the top and the answer grows under it without anything moving.
Flickable {
    id: list

    required property var messages // a list model with the roles messageId, key, isUser, text, thinking, isStreaming
    required property real columnWidth
    property AnswerContext context: null
    property bool canRetry: false // the last question can be asked again

    property var openThinking: ({}) // the reasoning that the reader unfolded, by the key of the message
    property int currentRow: -1 // where the keyboard was last

    readonly property alias count: column.count
    readonly property alias column: column
    readonly property alias distanceToEnd: column.distanceToEnd
    readonly property alias farFromEnd: column.farFromEnd
    readonly property alias following: column.following
    readonly property bool turnIsHeld: column.turnRow >= 0
    readonly property real step: Theme.px(40) // of an arrow key

    // The one row that the Tab key stops at.
    readonly property int tabRow: currentRow >= column.firstVisibleRow && currentRow <= column.lastVisibleRow
        ? currentRow : column.lastVisibleRow

    signal deletionWanted(real messageId)
    signal retryWanted

    // A chat that was opened comes up at its end at once.
    function showEnd(): void {
        column.showEnd(VirtualColumn.AtOnce)
    }

    function jumpToEnd(): void {
        column.showEnd(VirtualColumn.Animated, false)
    }

    function showLastTurn(): void {
        column.showTurn(count - 2, VirtualColumn.Animated)
    }

    function scrollByKey(key: int): bool {
        const page = height * 0.9
        switch (key) {
        case Qt.Key_PageUp:
            column.scrollBy(-page)
            return true
        case Qt.Key_PageDown:
            column.scrollBy(page)
            return true
        }
        return false
    }

    function focusRow(row: int): void {
        if (row < 0 || row >= count)
            return
        if (!column.itemAt(row)) {
            column.positionAtRow(row)
            column.forceLayout()
        }
        column.itemAt(row)?.forceActiveFocus(Qt.TabFocusReason)
    }

    // A row that is higher than the view is read through before the next one is reached.
    function moveBy(direction: int): void {
        const row = column.focusedRow
        const top = column.rowPosition(row) - column.position
        const rest = direction > 0 ? top + column.heightAt(row) - (height - column.bottomPadding) : column.topPadding - top
        if (rest > 0) {
            column.scrollBy(direction * Math.min(rest, step))
        } else if (row + direction >= 0 && row + direction < count) {
            focusRow(row + direction)
            const next = column.heightAt(row + direction)
            const seen = Math.min(next, step)
            column.reveal(row + direction, direction > 0 ? 0 : next - seen, next > height / 2 ? seen : next)
        }
    }

    function copy(text: string): void {
        clipboard.text = text
        clipboard.selectAll()
        clipboard.copy()
        clipboard.clear()
    }

    Accessible.name: "Сообщения"
    Accessible.role: Accessible.List
    T.ScrollBar.vertical: ThinScrollBar {}
    boundsBehavior: Flickable.StopAtBounds
    clip: true
    contentWidth: width
    flickableDirection: Flickable.VerticalFlick
    objectName: "messageList"

    Keys.onDownPressed: moveBy(1)
    Keys.onUpPressed: moveBy(-1)
    Keys.onPressed: event => {
        if (event.key === Qt.Key_Home) {
            column.scrollTo(0)
            focusRow(0)
        } else if (event.key === Qt.Key_End) {
            column.showEnd(VirtualColumn.AtOnce)
            focusRow(count - 1)
        } else if (scrollByKey(event.key)) {
            // The keyboard stays in what is seen.
            column.forceLayout()
            if (column.focusedRow < column.firstVisibleRow || column.focusedRow > column.lastVisibleRow)
                focusRow(event.key === Qt.Key_PageDown ? column.firstVisibleRow : column.lastVisibleRow)
        } else {
            return
        }
        event.accepted = true
    }

    VirtualColumn {
        id: column

        bottomPadding: Theme.gap1
        farDistance: Theme.px(80)
        flickable: list
        jumpDuration: Theme.jump
        model: list.messages
        spacing: Theme.gap3
        topPadding: Theme.gap4
        width: list.width

        // qmllint disable unqualified
        delegate: MessageRow {
            id: message

            canRetry: list.canRetry && index >= list.count - 2
            columnWidth: list.columnWidth
            context: list.context
            holdsFocus: index === column.focusedRow
            isLast: index === list.count - 1
            tabStop: index === list.tabRow
            thinkingOpen: list.openThinking[key] ?? false

            onCaretMoved: (y, height) => column.reveal(index, y, height)
            onCopyWanted: text => list.copy(text)
            onMenuWanted: (x, y, source) => {
                menu.active = true
                menu.focused = holdsFocus ? list.Window.activeFocusItem : null
                menu.row = index
                menu.item.openFor(message, x, y, source)
            }
            onRetryWanted: list.retryWanted()
            onThinkingToggled: {
                column.letGo()
                const open = Object.assign({}, list.openThinking)
                open[key] = !thinkingOpen
                list.openThinking = open
            }
        }
        // qmllint enable unqualified
        estimate: MessageHeights {
            answerWidth: list.columnWidth
            aroundAnswer: Theme.gap1 + Theme.actionHeight
            aroundQuestion: Theme.gap2 * 2 + Theme.gap2
            characterWidth: character.width
            fileHeight: Theme.sentFileHeight + Theme.gap2
            imageHeight: Theme.sentImageHeight + Theme.gap2
            lineHeight: Theme.leading(Theme.fontBody)
            questionWidth: list.columnWidth * 0.8 - Theme.gap4 * 2
            thinkingHeight: Theme.px(30) + Theme.gap3
        }

        onFocusedRowChanged: {
            if (focusedRow < 0)
                return
            if (focusedRow !== list.currentRow)
                itemAt(list.currentRow)?.deselect() // one selection in the list
            list.currentRow = focusedRow
        }
        onFocusedRowRemoved: row => list.focusRow(Math.min(row, count - 1))
    }
    AverageCharacter {
        id: character
    }
    // The way to the clipboard that Qt Quick has.
    TextEdit {
        id: clipboard

        Accessible.ignored: true
        visible: false
    }
    Loader {
        id: menu

        property Item focused: null // what the menu took the keyboard from
        property int row: -1

        active: false

        // qmllint disable unqualified
        sourceComponent: MessageMenu {
            onClosed: menu.focused?.forceActiveFocus(Qt.PopupFocusReason)
            onCopyWanted: text => list.copy(text)
            onDeletionWanted: messageId => {
                list.deletionWanted(messageId)
                if (menu.focused)
                    Qt.callLater(() => list.focusRow(Math.min(menu.row, list.count - 1)))
            }
            onEnlargeWanted: code => list.context?.diagramWanted(code)
            onRetryWanted: list.retryWanted()
        }
        // qmllint enable unqualified
    }
}
