import QtQuick

// Between the messages and the composer: that an answer is ready elsewhere, an error of the one here, or the word that it may
// take long.
Item {
    id: area

    required property string error
    required property string hint
    property bool canRetry: false // asking the last question again may help
    property string readyChat // in which an answer became ready meanwhile; empty without one

    signal retry
    signal dismissed
    signal readyChatWanted

    implicitHeight: Theme.gap3 + strips.height + (strips.height > 0 ? Theme.gap3 : hintLabel.visible ? hintLabel.height : 0)

    Column {
        id: strips

        spacing: Theme.gap2
        width: parent.width

        MessageStrip {
            actionText: "Открыть"
            color: Theme.accbg
            objectName: "readyBanner"
            symbol: "checkmark"
            text: "Ответ готов: %1".arg(area.readyChat)
            tint: Theme.acc
            visible: area.readyChat.length > 0
            width: parent.width

            onAction: area.readyChatWanted()
        }
        MessageStrip {
            id: strip

            actionText: area.canRetry ? "Повторить" : ""
            dismissible: true
            objectName: "errorBanner"
            text: area.error
            visible: area.error.length > 0
            width: parent.width

            onAction: area.retry()
            onDismissed: area.dismissed()
        }
    }
    Label {
        id: hintLabel

        anchors.bottom: parent.bottom
        anchors.bottomMargin: Theme.gap2
        color: Theme.t2
        font.pixelSize: Theme.fontLabel
        horizontalAlignment: Text.AlignHCenter
        objectName: "generationHint"
        text: area.hint
        visible: area.hint.length > 0 && area.error.length === 0 && area.readyChat.length === 0
        width: parent.width
        wrapMode: Text.Wrap
    }
}
