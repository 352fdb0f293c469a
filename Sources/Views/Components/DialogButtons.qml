import QtQuick

// The foot of a dialog: the way back and the action, side by side. Arrow keys and Tab move between them.
FocusScope {
    id: buttons

    required property string acceptText
    property string rejectText // empty: only one button
    property bool destructive: false
    property bool acceptEnabled: true
    property bool busy: false
    property bool fill: false // the two share the whole width
    readonly property Item accept: acceptButton
    readonly property Item reject: rejectButton
    readonly property real share: rejectButton.visible ? (width - Theme.gap2) / 2 : width

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
            width: buttons.fill ? buttons.share : Math.min(implicitWidth, buttons.share)

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
            width: buttons.fill ? buttons.share : Math.min(implicitWidth, buttons.share)

            onClicked: buttons.accepted()
        }
    }
}
