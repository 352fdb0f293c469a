import QtQuick
import Korvi.Views // the types written in C++

// The place of a picture, a video or a file that is being made, as large as that will be.
CardPart {
    id: skeleton

    required property string kind // "image", "video" or "file"
    property real aspect: kind === "video" ? 16 / 9 : 3 / 2 // of the coming picture

    readonly property bool isFile: kind === "file"
    readonly property var row: ({
        image: { symbol: "photo", text: "Создаю изображение…" },
        video: { symbol: "video", text: "Создаю видео…" },
        file: { symbol: "doc.text", text: "Создаю файл…" },
    })[kind] ?? { symbol: "sparkles", text: "Создаю…" }

    Accessible.name: label.text
    Accessible.role: Accessible.StaticText
    implicitHeight: surface.height

    Shimmer {
        id: surface

        height: skeleton.isFile ? Theme.cardHeight : Math.round(width / skeleton.aspect)
        objectName: "shimmer"
        radius: Theme.radiusCard
        width: Math.min(skeleton.width, skeleton.isFile ? Theme.cardWidth : Theme.px(360))
    }
    Row {
        anchors.centerIn: skeleton.isFile ? undefined : surface
        anchors.left: skeleton.isFile ? surface.left : undefined
        anchors.leftMargin: Theme.gap4
        anchors.verticalCenter: surface.verticalCenter
        spacing: Theme.gap2

        Symbol {
            anchors.verticalCenter: parent.verticalCenter
            color: Theme.t2
            name: skeleton.row.symbol
            size: Theme.icon
        }
        Label {
            id: label

            Accessible.ignored: true
            color: Theme.t2
            elide: Text.ElideRight
            text: skeleton.row.text
            width: Math.min(implicitWidth, surface.width - Theme.icon - Theme.gap2 - Theme.gap4 * 2)
        }
    }
}
