import QtQuick
import QtQuick.Dialogs

// Where a file is to be saved: the desktop's own dialog. Loaded when it is first asked for.
FileDialog {
    required property url file // that it proposes

    acceptLabel: "Сохранить"
    currentFolder: String(file).replace(/\/[^/]*$/, "")
    fileMode: FileDialog.SaveFile
    nameFilters: ["Все файлы (*)"]
    rejectLabel: "Отмена"
    selectedFile: file
    title: "Сохранить как"
}
