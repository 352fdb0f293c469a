import QtQuick

// The foot of a dialog: the way back and the action, side by side. Arrow keys and Tab move between them.
FocusScope {
    id: buttons

    required property string acceptText
    property string rejectText // empty: only one button
    property bool destructive: false
    property bool acceptEnabled: true
    property bool busy: false
    readonly property Item accept: acceptButton
    readonly property Item reject: rejectButton

    signal accepted
    signal rejected

    implicitHeight: row.implicitHeight
    implicitWidth: row.implicitWidth

    Row {
        id: row

        anchors.right: parent.right
        spacing: Theme.gap2

        SecondaryButton {
            id: rejectButton

            KeyNavigation.right: acceptButton
            objectName: "rejectButton"
            text: buttons.rejectText
            visible: text.length > 0
            width: Math.min(implicitWidth, (buttons.width - Theme.gap2) / 2)

            onClicked: buttons.rejected()
        }
        PrimaryButton {
            id: acceptButton

            KeyNavigation.left: rejectButton
            busy: buttons.busy
            destructive: buttons.destructive
            enabled: buttons.acceptEnabled && !busy
            implicitHeight: Theme.buttonHeight
            objectName: "acceptButton"
            text: buttons.acceptText
            width: Math.min(implicitWidth, rejectButton.visible ? (buttons.width - Theme.gap2) / 2 : buttons.width)

            onClicked: buttons.accepted()
        }
    }
}
