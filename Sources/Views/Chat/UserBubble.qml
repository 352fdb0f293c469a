import QtQuick

// What the user has said: images and files above, the text in a bubble.
Item {
    id: message

    required property string text
    property var content // of the message
    property AnswerContext context: null

    readonly property real widest: Math.round(width * 0.8) - Theme.gap4 * 2 + Theme.gap1

    readonly property bool isLong: text.length > 4000 // something that was pasted
    readonly property Item shown: isLong ? longBody : body
    readonly property bool isSpoken: text.length > 0 || attached.count === 0
    readonly property alias attachedNames: attached.names

    signal caretMoved(real y, real height)
    signal copyWanted(string text)

    function selectedText(): string {
        return isLong ? longBody.selectedText() : body.selectedText
    }

    function deselect(): void {
        if (isLong)
            longBody.deselect()
        else
            body.deselect()
    }

    function selectAll(): void {
        if (isLong) {
            longBody.selectAll()
        } else {
            body.takeFocus()
            body.selectAll()
        }
    }

    function takeCaret(): void {
        if (!isSpoken)
            attached.takeFocus()
        else if (isLong)
            longBody.takeCaret()
        else
            body.takeCaret()
    }

    implicitHeight: (attached.count > 0 ? attached.height + Theme.gap2 : 0) + (isSpoken ? bubble.height + Theme.gap2 : 0)

    SentFiles {
        id: attached

        content: message.content
        context: message.context
        visible: count > 0
        width: Math.round(message.width * 0.8)
        x: message.width - width
    }

    Rectangle {
        id: bubble

        anchors.right: parent.right
        color: Theme.sunk
        height: message.shown.height + Theme.gap2 * 2
        radius: Theme.radiusBubble
        visible: message.isSpoken
        y: attached.count > 0 ? attached.height + Theme.gap2 : 0
        width: message.shown.width + (Theme.gap4 - 2) * 2

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

            content: message.isLong ? "" : message.text
            objectName: "userText"
            visible: !message.isLong
            width: Math.min(Math.ceil(implicitWidth), message.widest)
            x: Theme.gap4 - 2
            y: Theme.gap2 + Math.round(lineDistance / 2)

            onCaretMoved: (y, height) => message.caretMoved(bubble.y + body.y + y, height)
        }
        LongText {
            id: longBody

            text: message.isLong ? message.text : ""
            visible: message.isLong
            width: message.widest
            x: body.x
            y: body.y

            onCaretMoved: (y, height) => message.caretMoved(bubble.y + longBody.y + y, height)
            onCopyWanted: text => message.copyWanted(text)
        }
    }
}
