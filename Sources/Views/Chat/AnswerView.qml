import QtQuick

// An answer: its reasoning, its text, and what can be done with it.
Item {
    id: answer

    required property var content // see AdvancedMarkdownText
    required property string thinking
    required property bool isStreaming
    required property bool thinkingOpen
    required property bool actionsShown
    required property bool canRetry
    property AnswerContext context: null
    property real key: 0 // see MessageRow

    readonly property bool isEmpty: body.count === 0
    // What a tool does, unless its placeholder says so.
    readonly property string status: isStreaming && context && !context.hasPlaceholder ? context.toolStatus : ""
    readonly property alias beginning: body.beginning

    signal thinkingToggled
    signal copyWanted(string text)
    signal retryWanted
    signal caretMoved(real y, real height)

    function selectedText(): string {
        return body.selectedText() || reasoning.selectedText()
    }

    function deselect(): void {
        body.deselect()
        reasoning.deselect()
    }

    function selectAll(): void {
        body.selectAll()
    }

    function takeCaret(): void {
        body.takeCaret()
    }

    // What is read, and what was written.
    function wholeText(): string {
        return body.plainText()
    }

    function markdown(): string {
        return body.markdown()
    }

    function sourceAt(x: real, y: real): var {
        return body.sourceAt(x - body.x, y - body.y)
    }

    function focusedSource(): var {
        return body.focusedSource()
    }

    implicitHeight: actions.y + actions.height

    ThinkingBlock {
        id: reasoning

        isThinking: answer.isStreaming && answer.isEmpty
        open: answer.thinkingOpen
        text: answer.thinking
        visible: text.length > 0
        width: parent.width

        onCopyWanted: text => answer.copyWanted(text)
        onToggled: answer.thinkingToggled()
    }
    AdvancedMarkdownText {
        id: body

        content: answer.content
        context: answer.context
        isStreaming: answer.isStreaming
        kept: answer.context?.keptOf("parts " + answer.key) ?? ({})
        visible: !answer.isEmpty
        width: parent.width
        y: reasoning.visible ? reasoning.height + Theme.gap3 : 0

        onCaretMoved: (y, height) => answer.caretMoved(body.y + y, height)
        onCopyWanted: text => answer.copyWanted(text)
    }
    Row {
        id: waiting

        spacing: Theme.gap2
        visible: answer.isStreaming && answer.isEmpty
        y: body.y

        StreamingDot {
            anchors.verticalCenter: parent.verticalCenter
        }
        Label {
            color: Theme.t3
            text: answer.status || (answer.thinking.length > 0 ? "Думаю…" : "Готовлю ответ…")
        }
    }
    ToolStatusLine {
        id: tool

        status: answer.isEmpty ? "" : answer.status
        width: body.width
        y: body.y + body.implicitHeight + Theme.gap3
    }
    // Its place is kept, so that nothing moves when it comes.
    Row {
        id: actions

        readonly property bool shown: answer.actionsShown && !answer.isStreaming

        enabled: shown
        height: Theme.actionHeight
        objectName: "answerActions"
        opacity: shown ? 1 : 0
        spacing: Theme.gap1
        x: -Theme.gap1 - Theme.hairline // symbols in line with the text
        y: body.y + (body.visible ? body.implicitHeight : waiting.height) + Theme.gap1
            + (tool.visible ? tool.height + Theme.gap3 : 0)

        Behavior on opacity { NumberAnimation { duration: Theme.quick } }

        IconButton {
            objectName: "copyButton"
            color: Theme.t3
            implicitHeight: Theme.actionHeight
            implicitWidth: Theme.actionHeight
            symbol: "doc.on.doc"
            text: "Копировать"

            onClicked: answer.copyWanted(answer.wholeText())
        }
        IconButton {
            objectName: "retryButton"
            color: Theme.t3
            implicitHeight: Theme.actionHeight
            implicitWidth: Theme.actionHeight
            symbol: "arrow.clockwise"
            text: "Повторить"
            visible: answer.canRetry

            onClicked: answer.retryWanted()
        }
    }
}
