import QtQuick
import Korvi.Views // the types written in C++

// A PDF is there: what is to be done with it.
Rectangle {
    id: sheet

    required property string path

    readonly property bool isNarrow: width < Theme.px(460)

    signal openWanted
    signal saveWanted
    signal folderWanted
    signal dismissed

    Accessible.name: label.text
    Accessible.role: Accessible.AlertMessage
    border.color: Theme.line2
    color: Theme.raise
    implicitHeight: isNarrow ? Theme.px(84) : Theme.px(44)
    radius: Theme.radiusCard

    Symbol {
        id: icon

        color: Theme.ok
        name: "checkmark.circle"
        size: Theme.icon
        x: Theme.gap3
        y: Math.round((Theme.px(44) - height) / 2)
    }
    Label {
        id: label

        anchors.left: icon.right
        anchors.leftMargin: Theme.gap2
        anchors.right: sheet.isNarrow ? close.left : actions.left
        anchors.rightMargin: Theme.gap2
        anchors.verticalCenter: icon.verticalCenter
        elide: Text.ElideMiddle
        text: "PDF готов: " + sheet.path.replace(/^.*\//, "")
    }
    Row {
        id: actions

        anchors.right: sheet.isNarrow ? undefined : close.left
        x: Theme.gap8
        y: sheet.isNarrow ? Theme.px(44) : Math.round((Theme.px(44) - height) / 2)

        LinkButton {
            text: "Открыть"

            onClicked: sheet.openWanted()
        }
        LinkButton {
            objectName: "savePdf"
            text: "Сохранить как…"

            onClicked: sheet.saveWanted()
        }
        LinkButton {
            text: "В папке"

            onClicked: sheet.folderWanted()
        }
    }
    IconButton {
        id: close

        anchors.right: parent.right
        anchors.rightMargin: Theme.gap1
        implicitHeight: Theme.px(28)
        implicitWidth: Theme.px(28)
        symbol: "xmark"
        text: "Скрыть"
        y: Math.round((Theme.px(44) - height) / 2)

        onClicked: sheet.dismissed()
    }
}
