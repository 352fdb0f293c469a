import QtQuick
import Korvi.Views // the types written in C++

// Takes what is dropped on the conversation, and says so while it is held over it.
DropArea {
    id: area

    signal taken(var urls, var image, string type) // the image as an ArrayBuffer, empty without one

    // The type of an image that is no file; empty without one.
    function imageType(formats: var): string {
        const images = formats.filter(format => format.startsWith("image/"))
        return ["image/png", "image/jpeg"].find(type => images.includes(type)) ?? images[0] ?? ""
    }

    onDropped: drop => {
        const type = imageType(drop.formats)
        const image = type.length > 0 ? drop.getDataAsArrayBuffer(type) : new ArrayBuffer(0)
        drop.accept(Qt.CopyAction)
        taken(Array.from(drop.urls), image, type)
    }
    onEntered: drag => drag.accepted = drag.hasUrls || imageType(drag.formats).length > 0

    Rectangle {
        anchors.fill: parent
        color: Qt.alpha(Theme.bg, 0.94)
        objectName: "dropOverlay"
        opacity: area.containsDrag ? 1 : 0
        visible: opacity > 0

        Behavior on opacity { NumberAnimation { duration: Theme.quick } }

        Rectangle {
            anchors.fill: parent
            anchors.margins: Theme.gap4
            border.color: Theme.acc
            border.width: Theme.gap1 / 2
            color: Qt.alpha(Theme.accbg, 0.5)
            radius: Theme.radiusComposer
        }
        Column {
            anchors.centerIn: parent
            spacing: Theme.gap4
            width: parent.width - Theme.gap8 * 2

            Rectangle {
                anchors.horizontalCenter: parent.horizontalCenter
                color: Theme.accbg
                height: width
                radius: width / 2
                width: Theme.px(64)

                Symbol {
                    anchors.centerIn: parent
                    color: Theme.acc
                    name: "arrow.down.doc"
                    size: Theme.px(28)
                }
            }
            Label {
                Accessible.role: Accessible.AlertMessage
                font.pixelSize: Theme.fontHeading1
                font.weight: Font.DemiBold
                horizontalAlignment: Text.AlignHCenter
                text: "Отпустите файлы, чтобы прикрепить"
                width: parent.width
                wrapMode: Text.Wrap
            }
        }
    }
}
