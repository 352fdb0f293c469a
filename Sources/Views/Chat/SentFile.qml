import QtQuick
import Korvi.Views // the types written in C++
import Korvi.ViewModels
import "AttachmentSymbol.js" as AttachmentSymbol

// A file of a message of the user: what it is, and what has become of it.
Item {
    id: file

    required property string url
    required property string filename
    required property string mimetype
    property AnswerContext context: null

    readonly property FileDownloads downloads: context?.downloads ?? null
    property FileDownload download: null // once it was asked for
    readonly property string about: [downloads?.kind(filename, mimetype) ?? "", sent.sizeText || (download?.size ?? "")]
        .filter(fact => fact.length > 0).join(" · ")
    readonly property bool hasFailed: sent.state === SentAttachment.Failed || (download?.error ?? "").length > 0

    function stateText(): string {
        switch (sent.state) {
        case SentAttachment.Uploading:
            return "Загружаю… %1 %".arg(Math.round(sent.progress * 100))
        case SentAttachment.Failed:
            return "Не удалось загрузить"
        case SentAttachment.Missing:
            return "Отправлено без файла"
        default:
            return download?.error || (download?.isRunning ? "Загружаю…" : about)
        }
    }

    implicitHeight: card.height + (failure.visible ? failure.height + Theme.gap1 : 0)
    implicitWidth: Theme.sentFileWidth

    SentAttachment {
        id: sent

        address: file.url
        attachments: file.context?.attachments ?? null
    }
    BaseButton {
        id: card

        Accessible.description: details.text
        Accessible.name: "Файл: %1".arg(file.filename)
        enabled: sent.state === SentAttachment.Sent && file.downloads !== null
        height: Theme.sentFileHeight
        hint: sent.error || (name.truncated ? file.filename : "")
        leftPadding: Theme.gap2 + Theme.gap1 / 2
        objectName: "sentFile"
        radius: Theme.radiusCard
        rightPadding: Theme.gap3
        text: file.filename
        width: parent.width

        background: Rectangle {
            border.color: file.hasFailed ? Theme.err : Theme.line2
            color: card.down || card.hovered ? Theme.sunk : Theme.raise
            radius: card.radius
        }
        contentItem: Item {
            Rectangle {
                id: tile

                anchors.verticalCenter: parent.verticalCenter
                color: file.hasFailed ? Theme.errbg : Theme.accbg
                height: width
                radius: Theme.radiusRow
                width: Theme.px(34)

                Symbol {
                    anchors.centerIn: parent
                    color: file.hasFailed ? Theme.err : Theme.acc
                    name: file.hasFailed ? "exclamationmark.triangle" : AttachmentSymbol.ofType(file.mimetype)
                    size: Theme.px(17)
                    visible: !ring.visible
                }
                ProgressRing {
                    id: ring

                    anchors.centerIn: parent
                    color: Theme.acc
                    height: width
                    objectName: "uploadRing"
                    progress: sent.progress
                    track: Theme.line2
                    visible: sent.state === SentAttachment.Uploading
                    width: Theme.px(18)
                }
            }
            Column {
                anchors.left: tile.right
                anchors.leftMargin: Theme.gap2 + Theme.gap1 / 2
                anchors.right: parent.right
                anchors.verticalCenter: parent.verticalCenter

                Label {
                    id: name

                    elide: Text.ElideMiddle
                    font.weight: Font.Medium
                    text: file.filename
                    width: parent.width
                }
                Label {
                    id: details

                    color: file.hasFailed ? Theme.err : Theme.t2
                    elide: Text.ElideRight
                    font.pixelSize: Theme.fontSmall
                    objectName: "sentState"
                    text: file.stateText()
                    visible: text.length > 0
                    width: parent.width
                }
            }
        }

        onClicked: {
            file.download = file.downloads.of(file.url, file.filename)
            file.download.open()
        }
    }
    LinkButton {
        id: failure

        anchors.right: parent.right
        anchors.top: card.bottom
        anchors.topMargin: Theme.gap1
        enabled: file.context?.canSend ?? false
        objectName: "sendSeparatelyButton"
        text: "Отправить отдельно"
        visible: sent.state === SentAttachment.Failed

        onClicked: file.context.sendWanted(file.url)
    }
}
