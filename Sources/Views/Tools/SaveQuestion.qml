import QtQuick

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
    }
}
