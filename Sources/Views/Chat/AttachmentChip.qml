import QtQuick
import Korvi.Views // the types written in C++
import "AttachmentSymbol.js" as AttachmentSymbol

// A file that goes with the next message: what it is, and a way to take it out. Delete and Backspace do that too.
BaseButton {
    id: chip

    required property string category // see AttachmentSymbol.js
    required property url source // the file
    property string details // its size
    required property string error // empty without one
    property bool readsFiles: true // it is the user's own
    required property bool isUploading
    required property real progress
    property string closeText: "Убрать файл"

    readonly property bool isPictured: picture.status === WebPicture.Ready
    readonly property real aroundName: leftPadding + rightPadding + tile.width + Theme.gap2 + Theme.gap1 + close.width
        + (note.text.length > 0 ? note.implicitWidth + Theme.gap2 : 0)

    signal removed

    Accessible.description: "%1: Delete".arg(closeText)
    Accessible.name: note.text.length > 0 ? "%1, %2".arg(text).arg(note.text) : text
    Accessible.role: Accessible.ListItem
    hint: error || (label.truncated ? text : "")
    implicitHeight: Theme.attachmentHeight
    implicitWidth: Math.min(Theme.attachmentWidth, Math.ceil(aroundName + label.implicitWidth))
    leftPadding: isPictured ? Theme.gap1 : Theme.gap2
    radius: Theme.radiusField
    rightPadding: Theme.gap1

    background: Rectangle {
        border.color: chip.error.length > 0 ? Theme.err : Theme.line2
        color: chip.error.length > 0 ? Theme.errbg : Theme.raise
        radius: chip.radius
    }
    contentItem: Item {
        Item {
            id: tile

            anchors.verticalCenter: parent.verticalCenter
            height: width
            width: chip.isPictured ? Theme.px(26) : Theme.px(20)

            WebPicture {
                id: picture

                anchors.fill: parent
                longestSide: Theme.px(26) * 4 // room to cut a square out of, on any screen
                crops: true
                radius: Theme.radiusRow - Theme.gap1 / 2
                readsFiles: chip.readsFiles
                source: chip.category === "image" ? "%1".arg(chip.source) : ""
                visible: chip.isPictured
            }
            Symbol {
                anchors.centerIn: parent
                color: chip.error.length > 0 ? Theme.err : Theme.t2
                name: chip.error.length > 0 ? "exclamationmark.triangle" : AttachmentSymbol.of(chip.category)
                size: Theme.icon
                visible: !chip.isPictured && !chip.isUploading
            }
            ProgressRing {
                anchors.fill: parent
                anchors.margins: Theme.gap1 / 2
                color: Theme.acc
                progress: chip.progress
                track: Theme.line2
                visible: chip.isUploading
            }
        }
        Label {
            id: label

            anchors.left: tile.right
            anchors.leftMargin: Theme.gap2
            anchors.verticalCenter: parent.verticalCenter
            color: chip.error.length > 0 ? Theme.err : Theme.t1
            elide: Text.ElideMiddle
            font.pixelSize: Theme.fontLabel
            objectName: "chipName"
            text: chip.text
            width: Math.min(Math.ceil(implicitWidth), chip.width - chip.aroundName)
        }
        Label {
            id: note

            anchors.verticalCenter: parent.verticalCenter
            color: Theme.t2
            font.pixelSize: Theme.fontLabel
            text: chip.error.length > 0 ? "не загружен" : chip.details
            x: label.x + Math.ceil(label.contentWidth) + Theme.gap2 // an elided name is narrower than its place
        }
        IconButton {
            id: close

            anchors.right: parent.right
            anchors.verticalCenter: parent.verticalCenter
            focusPolicy: Qt.NoFocus // Delete does it
            hint: ""
            implicitHeight: Theme.px(26)
            implicitWidth: Theme.px(26)
            objectName: "chipClose"
            symbol: "xmark"
            symbolSize: Theme.px(13)
            text: chip.closeText

            onClicked: chip.removed()
        }
    }

    Keys.onDeletePressed: removed()
    Keys.onPressed: event => {
        if (event.key === Qt.Key_Backspace) {
            event.accepted = true
            removed()
        }
    }
}
