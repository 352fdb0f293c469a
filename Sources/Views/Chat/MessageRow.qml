import QtQuick

// One message in the reading column: a bubble for the user's, plain text for an answer. Enter puts a caret into its
// text, Escape takes it out again.
Item {
    id: row

    required property int index
    required property real messageId
    required property real key // what the reader did to it is remembered under this
    required property bool isUser
    required property string question // empty for an answer
    required property var content // its blocks
    required property string thinking
    required property bool isStreaming
    required property real columnWidth
    required property bool thinkingOpen
    required property bool holdsFocus // the keyboard is on it or in it
    required property bool tabStop
    required property bool isLast
    required property bool canRetry
    property AnswerContext context: null

    readonly property bool highlighted: hover.hovered || holdsFocus
    readonly property BaseButton focusedButton: holdsFocus ? Window.activeFocusItem as BaseButton : null

    signal thinkingToggled
    signal retryWanted
    signal copyWanted(string text)
    signal menuWanted(real x, real y, var source) // of a part there, see AdvancedMarkdownText
    signal caretMoved(real y, real height)

    // What is read, and what was written.
    function wholeText(): string {
        return isUser ? question : body.item.wholeText() // qmllint disable
    }

    function markdown(): string {
        return isUser ? question : body.item.markdown() // qmllint disable
    }

    function selectedText(): string {
        return body.item.selectedText() // qmllint disable
    }

    function deselect(): void {
        body.item.deselect() // qmllint disable
    }

    Accessible.name: isUser ? "Вы: " + (question.slice(0, 200) || (body.item?.attachedNames ?? "")) : "Ответ: " + (body.item?.beginning ?? "") // qmllint disable
    Accessible.role: Accessible.ListItem
    activeFocusOnTab: tabStop || activeFocus // it may not be taken from the row that has the focus
    implicitHeight: Math.ceil(body.height) // rows begin on whole pixels

    // The Tab key goes on to buttons that have been scrolled out of sight.
    onFocusedButtonChanged: {
        if (focusedButton)
            caretMoved(focusedButton.mapToItem(row, 0, 0).y, focusedButton.height)
    }

    Keys.onEscapePressed: event => {
        event.accepted = holdsFocus && !activeFocus
        if (event.accepted)
            forceActiveFocus(Qt.TabFocusReason)
    }
    Keys.onPressed: event => {
        if (event.key === Qt.Key_Menu || event.key === Qt.Key_F10 && event.modifiers & Qt.ShiftModifier)
            menuWanted((width - columnWidth) / 2, Math.min(height, Theme.rowHeight), isUser ? null : body.item.focusedSource()) // qmllint disable
        else if (event.matches(StandardKey.Copy))
            copyWanted(selectedText() || wholeText())
        else if (activeFocus && event.matches(StandardKey.SelectAll))
            body.item.selectAll()
        else if (activeFocus && (event.key === Qt.Key_Return || event.key === Qt.Key_Enter))
            body.item.takeCaret()
        else
            return
        event.accepted = true
    }

    HoverHandler {
        id: hover
    }
    TapHandler {
        acceptedButtons: Qt.RightButton
        gesturePolicy: TapHandler.ReleaseWithinBounds

        onTapped: point => {
            const at = row.mapToItem(body, point.position.x, point.position.y)
            row.menuWanted(point.position.x, point.position.y, row.isUser ? null : body.item.sourceAt(at.x, at.y)) // qmllint disable
        }
    }
    FocusRing {
        anchors.fill: body
        anchors.margins: -Theme.gap2
        shown: row.activeFocus
    }
    Loader {
        id: body

        anchors.horizontalCenter: parent.horizontalCenter
        sourceComponent: row.isUser ? bubble : answer
        width: row.columnWidth
    }
    Component {
        id: bubble

        // qmllint disable unqualified
        UserBubble {
            content: row.content
            context: row.context
            text: row.question

            onCaretMoved: (y, height) => row.caretMoved(y, height)
            onCopyWanted: text => row.copyWanted(text)
        }
        // qmllint enable unqualified
    }
    Component {
        id: answer

        // qmllint disable unqualified
        AnswerView {
            actionsShown: row.highlighted || row.isLast
            canRetry: row.canRetry
            content: row.content
            context: row.context
            isStreaming: row.isStreaming
            key: row.key
            thinking: row.thinking
            thinkingOpen: row.thinkingOpen

            onCaretMoved: (y, height) => row.caretMoved(y, height)
            onCopyWanted: text => row.copyWanted(text)
            onRetryWanted: row.retryWanted()
            onThinkingToggled: row.thinkingToggled()
        }
        // qmllint enable unqualified
    }
}
