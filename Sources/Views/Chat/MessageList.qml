import QtQuick
import QtQuick.Templates as T

// The messages, oldest first. `following` says whether the end of the list is held in view while it grows: reading back
// lets go of it, coming back to the end takes it up again. After a send the new turn is given a whole screen, so that the
// question stands at the top and the answer grows under it without anything moving.
ListView {
    id: list

    required property var messages // a list model with the roles messageId, isUser, text, thinking, isStreaming
    required property real columnWidth

    property bool following: true
    property int turnRow: -1 // the row of the question that holds the screen
    property var openThinking: ({}) // the reasoning that the reader unfolded, by message

    readonly property bool turnIsHeld: turnRow >= 0
    readonly property real distanceToEnd: contentHeight + originY - contentY - height
    readonly property bool farFromEnd: distanceToEnd > Theme.px(80)

    function showEnd(): void {
        turnRow = -1
        turnSpace.height = 0
        following = true
        goToEnd()
    }

    function showLastTurn(): void {
        if (count < 2)
            return
        turnRow = count - 2
        following = true
        measureTurn()
        goToEnd()
    }

    // Lets the content change its height under the reader's hand without being carried away.
    function letGo(): void {
        following = false
    }

    function goToEnd(): void {
        if (count > 0) {
            forceLayout()
            positionViewAtEnd()
        }
    }

    // Once per turn of the event loop, when the rows have their new heights.
    function settleSoon(): void {
        Qt.callLater(settle) // qmllint disable
    }

    function settle(): void {
        if (!following)
            return
        measureTurn()
        if (distanceToEnd !== 0)
            goToEnd()
    }

    function measureTurn(): void {
        if (turnRow < 0 || turnRow >= count)
            return
        forceLayout()
        const first = itemAtIndex(turnRow)
        const last = itemAtIndex(count - 1)
        if (first && last)
            turnSpace.height = Math.max(0, height - headerItem.height - endSpace - (last.y + last.height - first.y))
    }

    function scrollTo(y: real): void {
        contentY = Math.max(originY, Math.min(y, originY + contentHeight - height))
        following = distanceToEnd < 2
    }

    function scrollByKey(key: int): bool {
        switch (key) {
        case Qt.Key_PageUp:
            scrollTo(contentY - height * 0.9)
            return true
        case Qt.Key_PageDown:
            scrollTo(contentY + height * 0.9)
            return true
        }
        return false
    }

    readonly property real endSpace: Theme.gap3

    Accessible.name: "Сообщения"
    Accessible.role: Accessible.List
    T.ScrollBar.vertical: ThinScrollBar {
        onPressedChanged: if (!pressed) list.following = list.distanceToEnd < 2
    }
    activeFocusOnTab: true
    boundsBehavior: Flickable.StopAtBounds
    cacheBuffer: 800
    clip: true
    model: messages
    objectName: "messageList"
    spacing: Theme.gap5

    // qmllint disable unqualified
    delegate: MessageRow {
        columnWidth: list.columnWidth
        thinkingOpen: list.openThinking[messageId] ?? false
        width: list.width

        onHeightChanged: list.settleSoon()
        onThinkingToggled: {
            list.letGo()
            const open = Object.assign({}, list.openThinking)
            open[messageId] = !thinkingOpen
            list.openThinking = open
        }
    }
    footer: Item {
        height: turnSpace.height + list.endSpace
        width: 1
    }
    // qmllint enable unqualified
    header: Item {
        height: Theme.gap4
        width: 1
    }

    Keys.onDownPressed: scrollTo(contentY + Theme.px(40))
    Keys.onUpPressed: scrollTo(contentY - Theme.px(40))
    Keys.onPressed: event => {
        if (event.key === Qt.Key_Home)
            scrollTo(originY)
        else if (event.key === Qt.Key_End)
            showEnd()
        else
            return
        event.accepted = true
    }
    onContentHeightChanged: settleSoon()
    onCountChanged: {
        if (count === 0)
            showEnd() // an empty list has nothing that could be read back
        else if (count <= turnRow)
            turnRow = -1
        settleSoon()
    }
    onHeightChanged: settleSoon()
    onMovementEnded: following = distanceToEnd < 2
    onMovementStarted: following = false

    QtObject {
        id: turnSpace

        property real height: 0
    }
}
