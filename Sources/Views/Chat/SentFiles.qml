import QtQuick
import Korvi.Views // the types written in C++

// What a message of the user carries besides its text, at the right: images first, then files.
Column {
    id: sent

    required property var content // of the message
    property AnswerContext context: null

    readonly property var imageAddresses: files.images
    readonly property var fileBlocks: files.files
    readonly property int count: imageAddresses.length + fileBlocks.length
    readonly property string names: (imageAddresses.length > 0 ? ["изображение"] : [])
        .concat(fileBlocks.map(file => file.filename)).join(", ")

    function takeFocus(): void {
        const first = images.itemAt(0) ?? cards.itemAt(0)
        first?.nextItemInFocusChain().forceActiveFocus(Qt.TabFocusReason)
    }

    function showImage(index: int): void {
        const all = imageAddresses.map((url, i) => ({ url: url, alt: "", isOurs: images.itemAt(i)?.isOurs ?? false }))
        context.imagesWanted(all, index)
    }

    spacing: Theme.gap2

    MessageFiles {
        id: files

        content: sent.content
    }
    Grid {
        anchors.right: parent.right
        columns: Math.max(1, Math.min(images.count, Math.floor((sent.width + spacing) / (Theme.sentTile + spacing))))
        spacing: Theme.gap2
        visible: images.count > 0

        Repeater {
            id: images

            model: sent.imageAddresses

            // qmllint disable unqualified
            delegate: SentImage {
                required property int index
                required property string modelData

                context: sent.context
                isAlone: images.count === 1
                url: modelData
                width: Math.min(implicitWidth, sent.width)

                onOpenWanted: sent.showImage(index)
            }
            // qmllint enable unqualified
        }
    }
    Repeater {
        id: cards

        model: sent.fileBlocks

        // qmllint disable unqualified
        delegate: SentFile {
            required property var modelData

            anchors.right: parent?.right
            context: sent.context
            filename: modelData.filename
            mimetype: modelData.mimetype
            url: modelData.url
            width: Math.min(implicitWidth, sent.width)
        }
        // qmllint enable unqualified
    }
}
