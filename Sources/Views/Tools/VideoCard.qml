import QtQuick
import Korvi.Views // the types written in C++

// A video of an answer. It plays in its place; nothing of what plays it is loaded before somebody wants that.
CardPart {
    id: card

    required property string url
    property url file // where it lies on this machine; empty until it has come
    property bool isRunning: false // it is coming
    property double progress: -1 // of its coming, 0 to 1; -1 while it is unknown
    property string size // empty until it is known
    property string error // empty unless it does not come
    property string savedName // empty until it was saved
    property bool playsInPlace: true // otherwise outside, and so it does where the player is missing

    readonly property string player: "qrc:/qt-project.org/imports/Korvi/Views/VideoPlayerView.qml"

    signal linkOpened(string url)
    signal fileWanted
    signal openWanted
    signal saveWanted
    signal saveAsWanted
    signal folderWanted
    signal cancelled

    function play(): void {
        if (!playsInPlace) {
            linkOpened(url)
            return
        }
        stage.setSource(player, { url: url })
        if (stage.status === Loader.Error) {
            playsInPlace = false
            stage.source = ""
            linkOpened(url)
        } else {
            fileWanted()
            stage.item.forceActiveFocus(Qt.TabFocusReason) // qmllint disable
        }
    }

    Accessible.name: "Видео"
    Accessible.role: Accessible.Grouping
    implicitHeight: frame.height + actions.height

    Keys.onPressed: event => {
        event.accepted = event.key === Qt.Key_Menu || event.key === Qt.Key_F10 && event.modifiers & Qt.ShiftModifier
        if (event.accepted)
            actions.toggleMenu()
    }

    Rectangle {
        id: frame

        color: Theme.stage
        height: Math.round(width * 9 / 16)
        radius: Theme.radiusCard
        width: Math.min(card.width, Theme.px(480))

        BaseButton {
            id: button

            anchors.fill: parent
            focus: true
            objectName: "playButton"
            radius: Theme.radiusCard
            text: card.playsInPlace ? "Воспроизвести видео" : "Открыть видео в браузере"
            visible: !stage.item

            contentItem: Item {
                Rectangle {
                    anchors.centerIn: parent
                    color: button.hovered || button.visualFocus ? Theme.acc : Theme.stageButton
                    height: width
                    radius: width / 2
                    width: Theme.px(56)

                    Behavior on color { ColorAnimation { duration: Theme.quick } }

                    Symbol {
                        anchors.centerIn: parent
                        anchors.horizontalCenterOffset: Theme.gap1 / 2
                        color: button.hovered || button.visualFocus ? Theme.onacc : Theme.stageText
                        name: card.playsInPlace ? "play" : "arrow.up.right.square"
                        size: Theme.px(24)
                    }
                }
            }

            onClicked: card.play()
        }
        Loader {
            id: stage

            anchors.fill: parent
        }
        Binding { property: "file"; target: stage.item; value: card.file; when: stage.item !== null }
        Binding { property: "progress"; target: stage.item; value: card.progress; when: stage.item !== null }
        Binding { property: "fetchError"; target: stage.item; value: card.error; when: stage.item !== null }
        Connections {
            function onFileWanted() {
                card.fileWanted()
            }
            function onLinkOpened(url) {
                card.linkOpened(url)
            }

            ignoreUnknownSignals: true
            target: stage.item
        }
    }
    // The player tells itself how it comes.
    Label {
        anchors.left: frame.left
        anchors.leftMargin: Theme.gap1
        anchors.right: actions.left
        anchors.rightMargin: Theme.gap2
        anchors.verticalCenter: actions.verticalCenter
        color: actions.error.length > 0 ? Theme.err : Theme.t2
        elide: Text.ElideRight
        font.pixelSize: Theme.fontSmall
        text: actions.stateText || "Видео" + (card.size && " · " + card.size)
    }
    FileActions {
        id: actions

        readonly property bool isTold: stage.item !== null

        anchors.right: frame.right
        anchors.top: frame.bottom
        error: isTold ? "" : card.error
        isRunning: card.isRunning && !isTold
        progress: card.progress
        savedName: card.savedName

        onCancelled: card.cancelled()
        onFolderWanted: card.folderWanted()
        onOpenWanted: card.openWanted()
        onSaveAsWanted: card.saveAsWanted()
        onSaveWanted: card.saveWanted()
    }
}
