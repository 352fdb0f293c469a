import QtQuick
import QtQuick.Dialogs

// Which files are to be attached: the desktop's own dialog. Loaded when it is first asked for.
FileDialog {
    acceptLabel: "Прикрепить"
    fileMode: FileDialog.OpenFiles
    rejectLabel: "Отмена"
    title: "Прикрепить файлы"
}
