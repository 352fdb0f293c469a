import QtQuick

// What can be attached, and from where.
PopupMenu {
    id: menu

    signal chosen(int filter) // of ComposerAttachments.nameFilters()

    implicitWidth: Theme.px(Theme.menuWidth)
    objectName: "attachMenu"
    y: -implicitHeight - Theme.gap1

    PopupMenuItem {
        hint: "Ctrl+U"
        objectName: "attach.files"
        symbol: "paperclip"
        text: "Файлы…"

        onTriggered: menu.chosen(0)
    }
    PopupMenuItem {
        objectName: "attach.images"
        symbol: "photo"
        text: "Изображения…"

        onTriggered: menu.chosen(1)
    }
}
