import QtQuick
import Korvi.Views // the types written in C++

// A video of an answer. It plays in its place; nothing of what plays it is loaded before somebody wants that.
CardPart {
    id: card

    required property string url
    property url file // where it lies on this machine; empty until it has come
    property double progress: -1 // of its coming, 0 to 1; -1 while it is unknown
    property string error // empty unless it does not come
    property bool playsInPlace: true // otherwise outside, and so it does where the player is missing

    readonly property string player: "qrc:/qt-project.org/imports/Korvi/Views/VideoPlayerView.qml"

    signal linkOpened(string url)
    signal fileWanted

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
    implicitHeight: frame.height

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
                Row {
                    anchors.bottom: parent.bottom
                    anchors.left: parent.left
                    anchors.margins: Theme.gap3
                    spacing: Theme.gap2

                    Symbol {
                        anchors.verticalCenter: parent.verticalCenter
                        color: Theme.stageText
                        name: "video"
                        size: Theme.icon
                    }
                    Label {
                        color: Theme.stageText
                        font.pixelSize: Theme.fontLabel
                        text: "Видео"
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
}
