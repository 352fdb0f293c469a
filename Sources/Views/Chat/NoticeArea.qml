import QtQuick

// Between the messages and the composer: an error of the answer, or the word that it may take long.
Item {
    id: area

    required property string error
    required property string hint
    property bool canRetry: false // asking the last question again may help

    signal retry
    signal dismissed

    implicitHeight: Theme.gap3 + (strip.visible ? strip.height + Theme.gap3 : hintLabel.visible ? hintLabel.height : 0)

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
    Label {
        id: hintLabel

        anchors.bottom: parent.bottom
        anchors.bottomMargin: Theme.gap2
        color: Theme.t2
        font.pixelSize: Theme.fontLabel
        horizontalAlignment: Text.AlignHCenter
        objectName: "generationHint"
        text: area.hint
        visible: area.hint.length > 0 && !strip.visible
        width: parent.width
        wrapMode: Text.Wrap
    }
}
