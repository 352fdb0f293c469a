import QtQuick

// One message in the reading column: a bubble for the user's, plain text for an answer.
Item {
    id: row

    required property real messageId
    required property bool isUser
    required property string text
    required property string thinking
    required property bool isStreaming
    required property real columnWidth
    required property bool thinkingOpen

    signal thinkingToggled

    implicitHeight: Math.ceil(content.height) // rows begin on whole pixels

    Loader {
        id: content

        anchors.horizontalCenter: parent.horizontalCenter
        sourceComponent: row.isUser ? bubble : answer
        width: row.columnWidth
    }
    Component {
        id: bubble

        // qmllint disable unqualified
        UserBubble {
            text: row.text
        }
        // qmllint enable unqualified
    }
    Component {
        id: answer

        // qmllint disable unqualified
        AnswerView {
            isStreaming: row.isStreaming
            text: row.text
            thinking: row.thinking
            thinkingOpen: row.thinkingOpen

            onThinkingToggled: row.thinkingToggled()
        }
        // qmllint enable unqualified
    }
}
