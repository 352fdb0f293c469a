import QtQuick

// Asks for one line of text. Return saves it, unless it is blank.
Sheet {
    id: dialog

    required property string label
    required property string acceptText
    property string text // as it stands before
    property string rejectText: "Отмена"
    readonly property string entered: field.text.trim()

    signal submitted(text: string)

    function submit(): void {
        if (entered.length === 0)
            return
        dialog.submitted(entered)
        dialog.accept()
    }

    firstFocus: field

    contentItem: Column {
        spacing: Theme.gap2

        Label {
            Accessible.role: Accessible.Heading
            bottomPadding: Theme.gap1
            font.pixelSize: Theme.fontHeading2
            font.weight: Font.DemiBold
            objectName: "dialogTitle"
            text: dialog.title
            width: parent.width
            wrapMode: Text.Wrap
        }
        InputField {
            id: field

            objectName: "dialogField"
            placeholderText: dialog.label
            text: dialog.text
            width: parent.width

            Component.onCompleted: selectAll()
            Keys.onEnterPressed: dialog.submit()
            Keys.onReturnPressed: dialog.submit()
        }
        Item {
            height: Theme.gap1
            width: 1
        }
        DialogButtons {
            acceptEnabled: dialog.entered.length > 0
            acceptText: dialog.acceptText
            rejectText: dialog.rejectText
            width: parent.width

            onAccepted: dialog.submit()
            onRejected: dialog.reject()
        }
    }
}
