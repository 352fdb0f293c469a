import QtQuick
import Korvi.Views // the types written in C++

// A file of an answer: what it is, and what can be done with it.
CardPart {
    id: card

    required property string filename
    required property string kind // "PDF", "Архив ZIP" ...
    required property bool openable // otherwise it is shown in its folder
    property bool isRunning: false
    property double progress: -1 // 0 to 1; -1 while it is unknown
    property string size // empty until it is known
    property string error // empty without one
    property string savedName // empty until it was saved

    signal openWanted
    signal saveWanted
    signal saveAsWanted
    signal folderWanted
    signal cancelled

    Accessible.name: "Файл: %1".arg(filename)
    Accessible.role: Accessible.Grouping
    implicitHeight: frame.height

    Keys.onPressed: event => {
        event.accepted = event.key === Qt.Key_Menu || event.key === Qt.Key_F10 && event.modifiers & Qt.ShiftModifier
        if (event.accepted)
            actions.toggleMenu()
    }

    Rectangle {
        id: frame

        border.color: Theme.line2
        color: "transparent"
        height: Theme.cardHeight
        radius: Theme.radiusCard
        width: Math.min(card.width, Theme.cardWidth)

        BaseButton {
            id: button

            anchors.fill: parent
            Accessible.description: details.text
            focus: true
            leftPadding: Theme.gap3
            objectName: "openButton"
            radius: frame.radius
            text: card.openable ? "Открыть файл %1".arg(card.filename) : "Показать файл %1 в папке".arg(card.filename)

            background: Rectangle {
                color: button.down || button.hovered ? Theme.hover : "transparent"
                radius: button.radius
            }
            contentItem: Item {
                Rectangle {
                    id: tile

                    anchors.verticalCenter: parent.verticalCenter
                    color: Theme.accbg
                    height: width
                    radius: Theme.radiusRow
                    width: Theme.cardTile

                    Symbol {
                        anchors.centerIn: parent
                        color: Theme.acc
                        name: "doc.text"
                        size: Theme.px(18)
                    }
                }
                Column {
                    anchors.left: tile.right
                    anchors.leftMargin: Theme.gap3
                    anchors.right: parent.right
                    anchors.rightMargin: actions.width + Theme.gap3
                    anchors.verticalCenter: parent.verticalCenter

                    Label {
                        elide: Text.ElideMiddle
                        font.weight: Font.Medium
                        text: card.filename
                        width: parent.width
                    }
                    Label {
                        id: details

                        color: card.error.length > 0 ? Theme.err : Theme.t2
                        elide: Text.ElideRight
                        font.pixelSize: Theme.fontSmall
                        text: actions.stateText || card.kind + (card.kind && card.size ? " · " : "") + card.size
                        width: parent.width
                    }
                }
            }

            onClicked: card.openWanted()
        }
        FileActions {
            id: actions

            anchors.right: parent.right
            anchors.rightMargin: Theme.gap2
            anchors.verticalCenter: parent.verticalCenter
            error: card.error
            isRunning: card.isRunning
            openable: card.openable
            progress: card.progress
            savedName: card.savedName

            onCancelled: card.cancelled()
            onFolderWanted: card.folderWanted()
            onOpenWanted: card.openWanted()
            onSaveAsWanted: card.saveAsWanted()
            onSaveWanted: card.saveWanted()
        }
        // How much of it has come.
        Item {
            anchors.bottom: parent.bottom
            anchors.left: parent.left
            anchors.leftMargin: frame.radius
            anchors.right: parent.right
            anchors.rightMargin: frame.radius
            height: Theme.gap1 / 2
            visible: card.isRunning

            Rectangle {
                color: Theme.acc
                height: parent.height
                radius: height / 2
                width: parent.width * Math.max(0.04, card.progress)
            }
        }
    }
}
