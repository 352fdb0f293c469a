import QtQuick
import QtQuick.Templates as T

// Asks where to save something; what asks is loaded then, and forgotten afterwards.
Item {
    id: question

    property var dialog: null

    signal answered(url file)

    // Where the desktop has no dialog of its own, Qt's gives a typed name as a bare path.
    function asFile(address: string): url {
        return address.startsWith("/") ? "file://" + address.replace(/#/g, "%23").replace(/\?/g, "%3F") : address
    }

    function ask(file: url): void {
        const component = Qt.createComponent("qrc:/qt-project.org/imports/Korvi/Views/SaveDialog.qml")
        if (component.status === Component.Error) {
            console.warn(component.errorString())
            return
        }
        dialog?.destroy()
        dialog = component.createObject(question, { file: file })
        dialog.accepted.connect(() => question.answered(asFile(dialog.selectedFile.toString())))
        dialog.open()
        Qt.callLater(prepare)
    }

    // Qt's own dialog leaves the keyboard in the empty list and Enter without a meaning. Here the name has it, and Enter
    // saves.
    function prepare(): void {
        const field = find(T.Overlay.overlay, item => item.objectName === "fileNameTextField")
        if (!field)
            return // the desktop's
        const button = find(field.parent, item => item.text === dialog.acceptLabel)
        field.forceActiveFocus(Qt.TabFocusReason)
        field.selectAll() // qmllint disable
        field.accepted.connect(() => button.clicked()) // qmllint disable
    }

    function find(item: Item, isIt: var): Item {
        if (!item || isIt(item))
            return item
        for (let i = 0; i < item.children.length; ++i) {
            const found = find(item.children[i], isIt)
            if (found)
                return found
        }
        return null
    }
}
