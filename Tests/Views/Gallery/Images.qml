import QtQuick
import Korvi.Views

Item {
    id: page

    implicitHeight: column.height + Theme.gap4 * 2

    Column {
        id: column

        spacing: Theme.gap4
        width: Math.min(page.width - Theme.gap4 * 2, Theme.readingWidth)
        x: (page.width - width) / 2
        y: Theme.gap4

        ImageAttachmentView {
            alt: "Кот на подоконнике"
            url: "http://127.0.0.1:1/none.png"
            width: column.width
        }
        ImageAttachmentView {
            alt: "Тайный файл"
            url: "file:///etc/passwd"
            width: column.width
        }
        ImageAttachmentView {
            alt: "Диаграмма роста"
            url: "http://127.0.0.1:8399/slow.png"
            width: column.width
        }
        ImageAttachmentView {
            url: "http://127.0.0.1:8399/big.png"
            width: column.width
        }
    }
}
