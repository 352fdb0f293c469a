import QtQuick

// A question, or with one button a message. Return presses the button with the ring: the action, or, when the action
// destroys something, the way back.
Sheet {
    id: dialog

    required property string message
    required property string acceptText
    property string rejectText: "Отмена" // empty: nothing to choose
    property bool destructive: false

    firstFocus: destructive && rejectText.length > 0 ? buttons.reject : buttons.accept

    contentItem: Column {
        spacing: Theme.gap2

        Label {
            Accessible.role: Accessible.Heading
            font.pixelSize: Theme.fontHeading2
            font.weight: Font.DemiBold
            objectName: "dialogTitle"
            text: dialog.title
            width: parent.width
            wrapMode: Text.Wrap
        }
        Label {
            bottomPadding: Theme.gap3
            color: Theme.t2
            objectName: "dialogMessage"
            text: dialog.message
            visible: text.length > 0
            width: parent.width
            wrapMode: Text.Wrap
        }
        DialogButtons {
            id: buttons

            acceptText: dialog.acceptText
            destructive: dialog.destructive
            rejectText: dialog.rejectText
            width: parent.width

            onAccepted: dialog.accept()
            onRejected: dialog.reject()
        }
    }
}
