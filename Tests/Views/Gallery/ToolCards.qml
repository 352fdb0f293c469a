import QtQuick
import Korvi.Views

// What tools are at, and the files and videos that they bring.
Item {
    id: page

    implicitHeight: column.height + Theme.gap4 * 2

    Column {
        id: column

        spacing: Theme.gap4
        width: Math.min(page.width - Theme.gap4 * 2, Theme.px(Theme.readingWidth))
        x: (page.width - width) / 2
        y: Theme.gap4

        ToolStatusLine {
            status: "Analyzing data with Python..."
            width: column.width
        }
        GeneratingSkeleton {
            kind: "image"
            width: column.width
        }
        GeneratingSkeleton {
            kind: "file"
            width: column.width
        }
        FileCard {
            filename: "отчёт-2025.pdf"
            kind: "PDF"
            openable: true
            size: "1,2 МБ"
            width: column.width
        }
        FileCard {
            filename: "Очень длинное название документа, которое никуда не помещается, версия 12.docx"
            isRunning: true
            kind: "Документ Word"
            openable: true
            progress: 0.42
            width: column.width
        }
        FileCard {
            error: "Файла больше нет на сервере."
            filename: "данные.csv"
            kind: "Таблица CSV"
            openable: true
            width: column.width
        }
        FileCard {
            filename: "архив.zip"
            kind: "Архив ZIP"
            openable: true
            savedName: "архив (2).zip"
            size: "812 КБ"
            width: column.width
        }
        VideoCard {
            size: "4,2 МБ"
            url: "https://example.org/video.mp4"
            width: column.width
        }
    }
}
