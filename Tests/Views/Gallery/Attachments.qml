import QtQuick
import Korvi.Views

Item {
    id: page

    // Of ComposerAttachments.
    function row(name: string, category: string, extra: var): var {
        return Object.assign({
            attachmentId: name, filename: name, sizeText: "1,2 МБ", category: category, source: sample, // qmllint disable
            isUploading: false, progress: 0, error: "",
        }, extra ?? {})
    }

    implicitHeight: column.height + Theme.gap4 * 2

    ListModel {
        id: one

        Component.onCompleted: append(page.row("отчёт-2025.pdf", "document"))
    }
    ListModel {
        id: several

        Component.onCompleted: {
            append(page.row("снимок экрана.png", "image"))
            append(page.row("Очень длинное название отчёта за прошлый год, редакция 3.docx", "document"))
            append(page.row("main.cpp", "code"))
            append(page.row("интервью.mp3", "audio", { isUploading: true, progress: 0.6 }))
            append(page.row("дача.mp4", "video", { error: "Нет места на диске" }))
        }
    }
    Column {
        id: column

        spacing: Theme.gap5
        width: Math.min(page.width - Theme.gap4 * 2, Theme.px(Theme.readingWidth))
        x: (page.width - width) / 2
        y: Theme.gap4

        Composer {
            attachments: one
            canSend: true
            generating: false
            mode: "webSearch"
            text: "Сравни с прошлогодним отчётом"
            width: column.width
        }
        Composer {
            attachmentError: "Файл слишком большой. Максимум: 10 МБ"
            attachments: several
            canSend: true
            generating: false
            text: ""
            width: column.width
        }
        Composer {
            canSend: true
            editImage: sample // qmllint disable
            generating: false
            text: ""
            width: column.width
        }
        SentFile {
            anchors.right: column.right
            filename: "отчёт-2025.pdf"
            mimetype: "application/pdf"
            url: "https://127.0.0.1/a.pdf"
        }
        SentFile {
            anchors.right: column.right
            filename: "Очень длинное название программы, редакция 3.py"
            mimetype: "text/x-python"
            url: "file:///nowhere.py"
        }
        DropOverlay {
            id: overlay

            height: Theme.px(220)
            width: column.width

            Component.onCompleted: {
                for (let i = 0; i < children.length; ++i)
                    children[i].opacity = 1
            }
        }
    }
}
