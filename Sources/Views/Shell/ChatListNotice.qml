import QtQuick
import Korvi.Views // the types written in C++

// In place of chats: they are being loaded, there are none, there is no line, or a search found none.
Item {
    id: notice

    required property string kind // "loading", "empty", "offline", "nothingFound"; empty when there are chats

    readonly property var texts: ({
        empty: ["Нет чатов", "Начните первый: он появится здесь"],
        offline: ["Нет связи", "Чаты появятся, когда она вернётся"],
        nothingFound: ["Ничего не найдено", "Esc — показать все чаты"],
    })
    readonly property var shown: texts[kind] ?? ["", ""]

    objectName: "chatListNotice"
    visible: kind.length > 0

    Column {
        anchors.left: parent.left
        anchors.margins: Theme.gap4
        anchors.right: parent.right
        anchors.top: parent.top
        anchors.topMargin: Theme.gap5
        visible: notice.kind !== "loading"

        Symbol {
            color: Theme.t3
            height: size + Theme.gap2
            name: "wifi.slash"
            size: Theme.icon
            visible: notice.kind === "offline"
        }
        Label {
            color: Theme.t2
            font.weight: Font.Medium
            objectName: "chatListNoticeTitle"
            text: notice.shown[0]
            width: parent.width
            wrapMode: Text.Wrap
        }
        Label {
            color: Theme.t3
            font.pixelSize: Theme.fontLabel
            text: notice.shown[1]
            width: parent.width
            wrapMode: Text.Wrap
        }
    }
    Column {
        Accessible.name: "Загружаем чаты"
        Accessible.role: Accessible.StaticText
        anchors.left: parent.left
        anchors.leftMargin: Theme.gap4
        anchors.right: parent.right
        anchors.rightMargin: Theme.gap4
        anchors.top: parent.top
        anchors.topMargin: Theme.gap6
        spacing: Theme.rowHeight - Theme.px(10)
        visible: notice.kind === "loading"

        Repeater {
            model: [0.7, 0.85, 0.5, 0.65]

            // qmllint disable unqualified
            Rectangle {
                required property real modelData

                color: Theme.sideSel
                height: Theme.px(10)
                radius: height / 2
                width: parent.width * modelData
            }
            // qmllint enable unqualified
        }
    }
}
