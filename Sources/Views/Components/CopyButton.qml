import QtQuick

// Copies something, and says for a moment that it did.
IconButton {
    id: button

    readonly property bool hasCopied: moment.running

    color: hasCopied ? Theme.ok : Theme.t2
    implicitHeight: Theme.actionHeight
    implicitWidth: Theme.actionHeight
    symbol: hasCopied ? "checkmark" : "doc.on.doc"
    symbolSize: Theme.px(15)
    text: hasCopied ? "Скопировано" : "Копировать"

    onClicked: moment.restart()

    Timer {
        id: moment

        interval: Theme.feedback
    }
}
