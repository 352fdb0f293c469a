import QtQuick
import Korvi.Views // the types written in C++
import Korvi.ViewModels

// An image of a message of the user, cut to its place: nothing moves when it comes.
Item {
    id: image

    required property string url
    required property bool isAlone
    property AnswerContext context: null

    readonly property alias isOurs: sent.isOurs
    readonly property bool isReady: picture.status === WebPicture.Ready
    readonly property bool hasFailed: sent.state === SentAttachment.Failed
    readonly property string stateText: hasFailed ? "Не удалось загрузить"
        : sent.state === SentAttachment.Missing ? "Отправлено без изображения"
        : sent.state === SentAttachment.Uploading ? "Загружаю…"
        : picture.status === WebPicture.Failed ? "Изображение недоступно" : ""

    signal openWanted

    implicitHeight: frame.height + (note.visible ? note.height + Theme.gap1 : 0)
    implicitWidth: isAlone ? Theme.sentImageWidth : Theme.sentTile

    SentAttachment {
        id: sent

        address: image.url
        attachments: image.context?.attachments ?? null
    }
    BaseButton {
        id: frame

        Accessible.description: image.stateText
        enabled: image.isReady && image.context !== null
        height: image.isAlone ? Theme.sentImageHeight : Theme.sentTile
        hint: sent.error
        objectName: "sentImage"
        radius: Theme.radiusBubble
        text: "Открыть изображение"
        width: parent.width

        background: Rectangle {
            border.color: Theme.line
            border.width: image.isReady ? 0 : Theme.hairline
            color: Theme.code
            radius: frame.radius
        }
        contentItem: Item {
            WebPicture {
                id: picture

                anchors.fill: parent
                longestSide: 1024
                crops: true
                radius: frame.radius
                readsFiles: sent.isOurs
                source: image.url
                visible: image.isReady
            }
            Symbol {
                anchors.centerIn: parent
                color: Theme.t3
                name: picture.status === WebPicture.Failed ? "photo.badge.exclamationmark" : "photo"
                size: Theme.px(24)
                visible: !image.isReady && !ring.visible
            }
            Rectangle {
                anchors.fill: parent
                color: frame.hovered ? Theme.hover : "transparent"
                radius: frame.radius
            }
            Rectangle {
                id: ring

                anchors.centerIn: parent
                color: Theme.stageScrim
                height: width
                radius: width / 2
                visible: sent.state === SentAttachment.Uploading
                width: Theme.px(44)

                ProgressRing {
                    anchors.centerIn: parent
                    color: Theme.stageText
                    height: width
                    objectName: "uploadRing"
                    progress: sent.progress
                    thickness: Theme.gap1 / 2
                    track: Theme.stageButton
                    width: Theme.px(26)
                }
            }
        }

        onClicked: image.openWanted()
    }
    // Beneath, so that it is read whatever the image shows.
    Flow {
        id: note

        anchors.right: parent.right
        anchors.top: frame.bottom
        anchors.topMargin: Theme.gap1
        layoutDirection: Qt.RightToLeft
        visible: image.hasFailed || sent.state === SentAttachment.Missing || picture.status === WebPicture.Failed
        width: image.isAlone ? Math.max(parent.width, Theme.px(Theme.formWidth)) : parent.width

        LinkButton {
            enabled: image.context?.canSend ?? false
            objectName: "sendSeparatelyButton"
            text: "Отправить отдельно"
            visible: image.hasFailed

            onClicked: image.context.sendWanted(image.url)
        }
        Label {
            color: image.hasFailed ? Theme.err : Theme.t2
            font.pixelSize: Theme.fontSmall
            height: image.hasFailed ? Theme.px(28) : implicitHeight
            objectName: "sentState"
            text: image.stateText
        }
    }
}
