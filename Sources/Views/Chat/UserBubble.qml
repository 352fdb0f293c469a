import QtQuick

Item {
    id: message

    required property string text

    readonly property real widest: Math.round(width * 0.8) - Theme.gap4 * 2 + Theme.gap1

    signal caretMoved(real y, real height)

    function selectedText(): string {
        return body.selectedText
    }

    function selectAll(): void {
        body.takeFocus()
        body.selectAll()
    }

    function takeCaret(): void {
        body.takeCaret()
    }

    implicitHeight: bubble.height + Theme.gap2

    Rectangle {
        id: bubble

        anchors.right: parent.right
        color: Theme.sunk
        height: body.height + Theme.gap2 * 2
        radius: Theme.radiusBubble
        width: body.width + (Theme.gap4 - 2) * 2

        // The corner that points at the speaker.
        Rectangle {
            anchors.bottom: parent.bottom
            anchors.right: parent.right
            color: bubble.color
            height: bubble.radius
            radius: Theme.gap1
            width: bubble.radius
        }
        SelectableText {
            id: body

            objectName: "userText"

            content: message.text
            width: Math.min(Math.ceil(implicitWidth), message.widest)
            x: Theme.gap4 - 2
            y: Theme.gap2 + Math.round(lineDistance / 2)

            onCaretMoved: (y, height) => message.caretMoved(body.y + y, height)
        }
    }
}
