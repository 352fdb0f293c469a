import QtQuick
import Korvi.Views // the types written in C++

// An image of an answer. Until its size is known it has one that suits most, and the words that stand for it can be
// read all the while.
WholePart {
    id: view

    required property string url // anything that stood in the answer
    property string alt: ""

    readonly property bool isRefused: picture.isRefused || url.length === 0
    readonly property bool hasFailed: picture.status === WebPicture.Failed && !isRefused
    readonly property bool isShown: picture.status === WebPicture.Ready
    readonly property real shrinking: isShown ? Math.min(1, width / picture.naturalSize.width, Theme.imageHeight / picture.naturalSize.height) : 1

    signal opened(string address) // as it stood in the answer

    implicitHeight: isShown ? Math.round(picture.naturalSize.height * shrinking)
        : isRefused || hasFailed ? Math.max(Theme.px(56), words.implicitHeight + Theme.gap3 * 2) : Theme.imagePlaceholder

    opens: isShown
    pointerLayer: isShown ? 1 : 0 // over the button, which is for the keyboard
    source: "![" + alt + "](" + url + ")"

    Keys.onPressed: event => {
        const copies = event.matches(StandardKey.Copy) && !isSelected
        if (copies)
            copyWanted(url)
        event.accepted = event.accepted || copies
    }
    onOpenWanted: opened(url)

    Rectangle {
        id: frame

        anchors.fill: parent
        border.color: Theme.line
        color: Theme.code
        radius: Theme.radiusCard
        visible: !view.isShown
    }
    WebPicture {
        id: picture

        height: view.height
        longestSide: Theme.imageDecoded
        radius: Theme.radiusRow
        source: view.url
        visible: view.isShown
        width: Math.round(naturalSize.width * view.shrinking)
    }
    BaseButton {
        id: target

        height: picture.height
        objectName: "imageTarget"
        radius: picture.radius
        text: view.alt.length > 0 ? view.alt : "Изображение"
        visible: view.isShown
        width: picture.width

        background: Rectangle {
            color: view.isSelected ? Theme.selection : target.hovered ? Theme.hover : "transparent"
            radius: target.radius
        }

        onClicked: view.opened(view.url)

        HoverHandler {
            cursorShape: Qt.PointingHandCursor
        }
    }
    Row {
        id: words

        readonly property real textWidth: view.width - Theme.gap4 * 2 - icon.width - spacing - (again.visible ? again.width + spacing : 0)

        spacing: Theme.gap3
        visible: !view.isShown
        x: Theme.gap4
        y: Math.round((view.height - height) / 2)

        Symbol {
            id: icon

            anchors.verticalCenter: parent.verticalCenter
            color: Theme.t2
            name: view.isRefused || view.hasFailed ? "photo.badge.exclamationmark" : "photo"
            size: Theme.px(20)
        }
        Column {
            anchors.verticalCenter: parent.verticalCenter
            width: words.textWidth

            Label {
                color: Theme.t1
                elide: Text.ElideRight
                maximumLineCount: 3
                text: view.alt.length > 0 ? view.alt : "Изображение"
                width: parent.width
                wrapMode: Text.Wrap
            }
            Label {
                color: view.hasFailed ? Theme.err : Theme.t2
                elide: Text.ElideRight
                font.pixelSize: Theme.fontLabel
                maximumLineCount: 2
                text: view.isRefused ? view.url : view.hasFailed ? "Не удалось загрузить изображение" : "Загрузка…"
                width: parent.width
                wrapMode: Text.WrapAnywhere
            }
        }
        SecondaryButton {
            id: again

            anchors.verticalCenter: parent.verticalCenter
            objectName: "imageRetryButton"
            text: "Повторить"
            visible: view.hasFailed

            onClicked: picture.reload()
        }
    }
    Rectangle {
        anchors.bottom: frame.bottom
        anchors.bottomMargin: Theme.gap3
        anchors.left: frame.left
        anchors.leftMargin: Theme.gap4
        color: Theme.acc
        height: Theme.gap1 / 2
        objectName: "imageProgress"
        radius: height / 2
        visible: picture.status === WebPicture.Loading && picture.progress > 0
        width: (frame.width - Theme.gap4 * 2) * picture.progress
    }
}
