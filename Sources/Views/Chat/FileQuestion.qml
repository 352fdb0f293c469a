import QtQuick

// Asks for files; what asks is loaded then, and forgotten when it asks anew. It begins where the last files were.
Item {
    id: question

    property var dialog: null
    property url folder

    signal answered(var files) // a list of addresses
    signal closed

    function ask(nameFilters: var, filter: int): void {
        const component = Qt.createComponent("qrc:/qt-project.org/imports/Korvi/Views/FilePicker.qml")
        if (component.status === Component.Error) {
            console.warn(component.errorString())
            return
        }
        dialog?.destroy()
        dialog = component.createObject(question, { nameFilters: nameFilters })
        dialog.selectedNameFilter.index = filter
        if (folder.toString().length > 0)
            dialog.currentFolder = folder
        dialog.accepted.connect(() => {
            folder = dialog.currentFolder
            answered(Array.from(dialog.selectedFiles))
            closed()
        })
        dialog.rejected.connect(() => closed())
        dialog.open()
    }
}
