import QtQuick
import Korvi.Views // the types written in C++

// The pictures of an answer, one at a time, over the whole window.
ViewerOverlay {
    id: overlay

    required property var images // { url, alt }, isOurs for a file of the user's own
    required property int currentIndex

    readonly property var current: images[currentIndex] ?? ({ url: "", alt: "" })
    readonly property bool canGoBack: currentIndex >= 1
    readonly property bool canGoForward: currentIndex < images.length - 1

    function navigateTo(index: int): void {
        if (index < 0 || index >= images.length)
            return
        fit()
        currentIndex = index
    }

    fullScale: 1 / picture.Screen.devicePixelRatio // a pixel is a pixel
    isReady: picture.status === WebPicture.Ready
    name: current.alt || "Изображение"
    natural: picture.naturalSize

    onCopyWanted: {
        picture.copy()
        say("Скопировано!")
    }
    onSaveWanted: question.ask(picture.suggestedFile())
    onStepWanted: direction => navigateTo(currentIndex + direction)

    over: [
        Spinner {
            anchors.centerIn: parent
            color: Theme.stageText
            running: picture.status === WebPicture.Loading
        },
        Column {
            anchors.centerIn: parent
            spacing: Theme.gap2
            visible: picture.status === WebPicture.Failed

            Symbol {
                anchors.horizontalCenter: parent.horizontalCenter
                color: Theme.stageText
                name: "photo.badge.exclamationmark"
                size: Theme.px(32)
            }
            Label {
                color: Theme.stageText
                text: "Не удалось загрузить"
            }
            LinkButton {
                anchors.horizontalCenter: parent.horizontalCenter
                color: Theme.stageText
                text: "Повторить"

                onClicked: picture.reload()
            }
        },
        ViewerButton {
            anchors.left: parent.left
            anchors.leftMargin: Theme.gap4
            anchors.verticalCenter: parent.verticalCenter
            objectName: "backButton"
            symbol: "chevron.left"
            text: "Предыдущее изображение"
            visible: overlay.canGoBack

            onClicked: overlay.navigateTo(overlay.currentIndex - 1)
        },
        ViewerButton {
            anchors.right: parent.right
            anchors.rightMargin: Theme.gap4
            anchors.verticalCenter: parent.verticalCenter
            objectName: "forwardButton"
            symbol: "chevron.right"
            text: "Следующее изображение"
            visible: overlay.canGoForward

            onClicked: overlay.navigateTo(overlay.currentIndex + 1)
        },
        Label {
            anchors.left: parent.left
            anchors.leftMargin: Theme.gap5
            anchors.top: parent.top
            anchors.topMargin: Theme.gap5
            color: Theme.stageText
            text: "%1 из %2".arg(overlay.currentIndex + 1).arg(overlay.images.length)
            visible: overlay.images.length > 1
        },
        SaveQuestion {
            id: question

            onAnswered: file => overlay.say(picture.savePng(file) ? "Сохранено" : "Не удалось сохранить")
        }
    ]

    WebPicture {
        id: picture

        height: overlay.place.height
        longestSide: 8192
        objectName: "viewerPicture"
        readsFiles: overlay.current.isOurs ?? false
        source: overlay.current.url
        width: overlay.place.width
        x: overlay.place.x
        y: overlay.place.y
    }
}
