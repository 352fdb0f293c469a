import QtQuick
import QtQuick.Templates as T
import Korvi.Views // the types written in C++

// The pictures of an answer, one at a time, over the whole window.
T.Popup {
    id: overlay

    required property var images // { url, alt }, isOurs for a file of the user's own
    required property int currentIndex

    readonly property var current: images[currentIndex] ?? ({ url: "", alt: "" })
    readonly property bool canGoBack: currentIndex >= 1
    readonly property bool canGoForward: currentIndex < images.length - 1
    property bool isZoomed: false // a pixel is a pixel
    property string notice // what was done, for a moment

    readonly property FocusReturn focusReturn: FocusReturn {
        popup: overlay
    }

    function navigateTo(index: int): void {
        if (index < 0 || index >= images.length)
            return
        isZoomed = false
        currentIndex = index
    }

    function say(text: string): void {
        notice = text
        moment.restart()
    }

    closePolicy: T.Popup.CloseOnEscape
    focus: true
    height: parent ? parent.height : 0
    modal: true
    padding: 0
    parent: T.Overlay.overlay
    width: parent ? parent.width : 0

    background: Rectangle {
        color: Theme.viewer
    }
    enter: Transition {
        NumberAnimation { duration: Theme.calm; from: 0; property: "opacity"; to: 1 }
    }
    exit: Transition {
        NumberAnimation { duration: Theme.calm; from: 1; property: "opacity"; to: 0 }
    }
    contentItem: FocusScope {
        id: scope

        Accessible.name: overlay.current.alt || "Изображение"
        Accessible.role: Accessible.Dialog
        focus: true

        Keys.onPressed: event => {
            event.accepted = true
            if (event.key === Qt.Key_Left)
                overlay.navigateTo(overlay.currentIndex - 1)
            else if (event.key === Qt.Key_Right)
                overlay.navigateTo(overlay.currentIndex + 1)
            else if (event.key === Qt.Key_Plus || event.key === Qt.Key_Equal)
                overlay.isZoomed = true
            else if (event.key === Qt.Key_Minus || event.key === Qt.Key_0)
                overlay.isZoomed = false
            else if (event.matches(StandardKey.Copy))
                copyButton.clicked()
            else if (event.matches(StandardKey.Save))
                saveButton.clicked()
            else
                event.accepted = false
        }

        Flickable {
            id: area

            readonly property size natural: picture.naturalSize
            // Of the picture where it fits in, never larger than it is.
            readonly property real fitting: natural.width > 0
                ? Math.min(1, (width - Theme.gap8 * 2) / natural.width, (height - Theme.px(64) * 2) / natural.height) : 1
            readonly property real shownScale: overlay.isZoomed ? 1 / Screen.devicePixelRatio : fitting

            anchors.fill: parent
            boundsBehavior: Flickable.StopAtBounds
            clip: true
            contentHeight: Math.max(height, picture.height)
            contentWidth: Math.max(width, picture.width)
            interactive: contentWidth > width || contentHeight > height

            TapHandler {
                id: tap

                onTapped: point => {
                    const at = picture.mapFromItem(area.contentItem, point.position.x, point.position.y)
                    if (!picture.contains(at))
                        overlay.close()
                    else if (area.fitting < 1 || overlay.isZoomed)
                        overlay.isZoomed = !overlay.isZoomed
                }
            }
            WebPicture {
                id: picture

                longestSide: 8192
                height: Math.round(naturalSize.height * area.shownScale)
                objectName: "viewerPicture"
                readsFiles: overlay.current.isOurs ?? false
                source: overlay.current.url
                width: Math.round(naturalSize.width * area.shownScale)
                x: Math.round((area.contentWidth - width) / 2)
                y: Math.round((area.contentHeight - height) / 2)
            }
        }
        Spinner {
            anchors.centerIn: parent
            color: Theme.stageText
            running: picture.status === WebPicture.Loading
        }
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
        }
        ViewerButton {
            anchors.left: parent.left
            anchors.leftMargin: Theme.gap4
            anchors.verticalCenter: parent.verticalCenter
            objectName: "backButton"
            symbol: "chevron.left"
            text: "Предыдущее изображение"
            visible: overlay.canGoBack

            onClicked: overlay.navigateTo(overlay.currentIndex - 1)
        }
        ViewerButton {
            anchors.right: parent.right
            anchors.rightMargin: Theme.gap4
            anchors.verticalCenter: parent.verticalCenter
            objectName: "forwardButton"
            symbol: "chevron.right"
            text: "Следующее изображение"
            visible: overlay.canGoForward

            onClicked: overlay.navigateTo(overlay.currentIndex + 1)
        }
        Row {
            anchors.right: parent.right
            anchors.rightMargin: Theme.gap4
            anchors.top: parent.top
            anchors.topMargin: Theme.gap3
            spacing: Theme.gap2

            ViewerButton {
                objectName: "zoomButton"
                symbol: "arrow.up.left.and.arrow.down.right"
                text: overlay.isZoomed ? "Вписать в окно" : "Показать в полном размере"
                visible: area.fitting < 1 || overlay.isZoomed

                onClicked: overlay.isZoomed = !overlay.isZoomed
            }
            ViewerButton {
                id: copyButton

                enabled: picture.status === WebPicture.Ready
                objectName: "copyImageButton"
                symbol: "doc.on.doc"
                text: "Копировать"

                onClicked: {
                    picture.copy()
                    overlay.say("Скопировано!")
                }
            }
            ViewerButton {
                id: saveButton

                enabled: picture.status === WebPicture.Ready
                objectName: "saveImageButton"
                symbol: "arrow.down.to.line"
                text: "Сохранить"

                onClicked: question.ask(picture.suggestedFile())
            }
            ViewerButton {
                objectName: "closeButton"
                symbol: "xmark"
                text: "Закрыть"

                onClicked: overlay.close()
            }
        }
        Label {
            anchors.left: parent.left
            anchors.leftMargin: Theme.gap5
            anchors.top: parent.top
            anchors.topMargin: Theme.gap5
            color: Theme.stageText
            text: "%1 из %2".arg(overlay.currentIndex + 1).arg(overlay.images.length)
            visible: overlay.images.length > 1
        }
        Rectangle {
            anchors.bottom: parent.bottom
            anchors.bottomMargin: Theme.gap6
            anchors.horizontalCenter: parent.horizontalCenter
            color: Theme.stageButton
            height: Theme.buttonHeight
            radius: height / 2
            visible: overlay.notice.length > 0
            width: said.implicitWidth + Theme.gap5 * 2

            Label {
                id: said

                Accessible.role: Accessible.AlertMessage
                anchors.centerIn: parent
                color: Theme.stageText
                text: overlay.notice
            }
        }
        SaveQuestion {
            id: question

            onAnswered: file => overlay.say(picture.savePng(file) ? "Сохранено" : "Не удалось сохранить")
        }
        Timer {
            id: moment

            interval: Theme.feedback

            onTriggered: overlay.notice = ""
        }
    }
}
