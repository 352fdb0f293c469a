import QtQuick

// What can be done with one message.
PopupMenu {
    id: menu

    property real messageId: -1
    property string text // as it is read
    property string markdown // as it was written; empty for a question, which is only that
    property string selectedText
    property var source: null // { kind, text } of the part that it was opened on
    property bool canRetry: false

    readonly property var sourceTexts: ({
        code: "Копировать код",
        diagram: "Копировать код диаграммы",
        formula: "Копировать формулу (TeX)",
        table: "Копировать таблицу",
    })

    signal copyWanted(string text)
    signal deletionWanted(real messageId)
    signal enlargeWanted(string code) // of a diagram
    signal retryWanted

    // Beside that place in the row. What is done concerns the message as it is now.
    function openFor(row: MessageRow, x: real, y: real, part: var): void {
        const place = row.mapToItem(parent, x, y)
        messageId = row.messageId
        text = row.wholeText()
        markdown = row.isUser ? "" : row.markdown()
        selectedText = row.selectedText()
        source = part
        canRetry = row.canRetry
        popup(place.x, place.y)
    }

    firstIndex: selectedText.length > 0 ? 2 : 0 // what is selected is what one wants to copy
    objectName: "messageMenu"

    onClosed: {
        text = ""
        markdown = ""
        selectedText = ""
        source = null
    }

    PopupMenuItem {
        objectName: "copyItem"
        symbol: "doc.on.doc"
        text: "Копировать"

        onTriggered: menu.copyWanted(menu.text)
    }
    PopupMenuItem {
        height: visible ? implicitHeight : 0
        objectName: "copyMarkdownItem"
        text: "Копировать как Markdown"
        visible: menu.markdown.length > 0

        onTriggered: menu.copyWanted(menu.markdown)
    }
    PopupMenuItem {
        height: visible ? implicitHeight : 0
        objectName: "copySelectionItem"
        text: "Копировать выделенное"
        visible: menu.selectedText.length > 0

        onTriggered: menu.copyWanted(menu.selectedText)
    }
    PopupMenuItem {
        height: visible ? implicitHeight : 0
        objectName: "copySourceItem"
        text: menu.sourceTexts[menu.source?.kind] ?? ""
        visible: text.length > 0

        onTriggered: menu.copyWanted(menu.source.text)
    }
    PopupMenuItem {
        height: visible ? implicitHeight : 0
        objectName: "enlargeItem"
        symbol: "arrow.up.left.and.arrow.down.right"
        text: "Показать крупнее"
        visible: menu.source?.kind === "diagram"

        onTriggered: menu.enlargeWanted(menu.source.text)
    }
    PopupMenuItem {
        height: visible ? implicitHeight : 0
        objectName: "retryItem"
        symbol: "arrow.clockwise"
        text: "Повторить"
        visible: menu.canRetry

        onTriggered: menu.retryWanted()
    }
    PopupMenuItem {
        destructive: true
        objectName: "deleteItem"
        symbol: "trash"
        text: "Удалить"

        onTriggered: menu.deletionWanted(menu.messageId)
    }
}
