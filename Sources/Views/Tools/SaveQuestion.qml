import QtQuick

// Asks where to save something; what asks is loaded then, and forgotten afterwards.
Item {
    id: question

    property var dialog: null

    signal answered(url file)

    function ask(file: url): void {
        const component = Qt.createComponent("qrc:/qt-project.org/imports/Korvi/Views/SaveDialog.qml")
        if (component.status === Component.Error) {
            console.warn(component.errorString())
            return
        }
        dialog?.destroy()
        dialog = component.createObject(question, { file: file })
        dialog.accepted.connect(() => question.answered(dialog.selectedFile))
        dialog.open()
    }
}
