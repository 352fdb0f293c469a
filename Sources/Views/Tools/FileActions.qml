import QtQuick

// What can be done with a file of an answer, and how far it is.
Row {
    id: actions

    property bool openable: true // otherwise it is shown in its folder
    property bool isRunning: false
    property double progress: -1 // 0 to 1; -1 while it is unknown
    property string error // empty without one
    property string savedName // empty until it was saved

    readonly property string stateText: error.length > 0 ? error
        : isRunning ? progress >= 0 ? "Загружаю… %1 %".arg(Math.round(progress * 100)) : "Загружаю…"
        : savedName.length > 0 ? "Сохранено: %1".arg(savedName) : ""

    signal openWanted
    signal saveWanted
    signal saveAsWanted
    signal folderWanted
    signal cancelled

    function toggleMenu(): void {
        menu.active = true
        const popup = menu.item as PopupMenu
        if (popup.opened)
            popup.close()
        else
            popup.popup(more, 0, more.height)
    }

    IconButton {
        objectName: "saveButton"
        symbol: actions.isRunning ? "xmark" : actions.savedName.length > 0 ? "folder" : "arrow.down.to.line"
        text: actions.isRunning ? "Отменить загрузку" : actions.savedName.length > 0 ? "Показать в папке" : "Сохранить в Загрузки"

        onClicked: {
            if (actions.isRunning)
                actions.cancelled()
            else if (actions.savedName.length > 0)
                actions.folderWanted()
            else
                actions.saveWanted()
        }
    }
    IconButton {
        id: more

        objectName: "moreButton"
        symbol: "ellipsis"
        text: "Ещё"

        onClicked: actions.toggleMenu()

        Loader {
            id: menu

            active: false

            // qmllint disable unqualified
            sourceComponent: PopupMenu {
                PopupMenuItem {
                    symbol: "arrow.up.right.square"
                    text: "Открыть"
                    enabled: actions.openable

                    onTriggered: actions.openWanted()
                }
                PopupMenuItem {
                    symbol: "arrow.down.to.line"
                    text: "Сохранить в Загрузки"

                    onTriggered: actions.saveWanted()
                }
                PopupMenuItem {
                    objectName: "saveAsItem"
                    symbol: "arrow.down.doc"
                    text: "Сохранить как…"

                    onTriggered: actions.saveAsWanted()
                }
                PopupMenuItem {
                    symbol: "folder"
                    text: "Показать в папке"

                    onTriggered: actions.folderWanted()
                }
            }
            // qmllint enable unqualified
        }
    }
}
