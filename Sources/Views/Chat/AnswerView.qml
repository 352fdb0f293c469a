import QtQuick

Column {
    id: answer

    required property string text
    required property string thinking
    required property bool isStreaming
    required property bool thinkingOpen

    signal thinkingToggled

    spacing: Theme.gap3

    ThinkingBlock {
        isThinking: answer.isStreaming && answer.text.length === 0
        open: answer.thinkingOpen
        text: answer.thinking
        visible: text.length > 0
        width: parent.width

        onToggled: answer.thinkingToggled()
    }
    Item {
        height: Math.max(body.height, waiting.visible ? waiting.height : 0)
        visible: answer.text.length > 0 || waiting.visible
        width: parent.width

        SelectableText {
            id: body

            objectName: "answerText"

            // Where the text ends; named so that growth and a new width are noticed.
            readonly property rect end: {
                answer.text
                contentHeight
                width
                return positionToRectangle(length)
            }

            content: answer.text
            visible: answer.text.length > 0
            width: parent.width - Theme.gap4

            StreamingDot {
                visible: answer.isStreaming
                x: body.end.x + Theme.gap1
                y: body.end.y + (body.end.height - height) / 2
            }
        }
        Row {
            id: waiting

            spacing: Theme.gap2
            visible: answer.isStreaming && answer.text.length === 0

            StreamingDot {
                anchors.verticalCenter: parent.verticalCenter
            }
            Label {
                color: Theme.t3
                text: answer.thinking.length > 0 ? "Думаю…" : "Готовлю ответ…"
            }
        }
    }
}
