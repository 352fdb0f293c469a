import QtQuick
import QtQuick.Templates as T

// Something to be looked at over the whole window, by the pointer or by the keyboard alone: as a whole, enlarged, copied,
// saved. What it is stands in it, at `place`.
T.Popup {
    id: overlay

    required property string name // for a screen reader
    required property size natural // pixels, at a scale of 1; empty until it is known
    property bool isReady: false // to be copied and saved
    property string copyText: "Копировать"
    property string saveText: "Сохранить"
    property alias fullScale: area.fullScale
    property alias largestFit: area.largestFit
    property alias over: above.data // stands still while what is shown moves
    default property alias shown: area.flickableData

    readonly property alias isZoomed: area.isZoomed
    readonly property alias place: area.place
    readonly property alias shownScale: area.shownScale
    readonly property size room: Qt.size(Math.max(1, width - area.margins.width * 2), Math.max(1, height - area.margins.height * 2))
    property string notice // what was done, for a moment

    signal copyWanted
    signal saveWanted
    signal stepWanted(int direction) // an arrow key that moves nothing

    readonly property FocusReturn focusReturn: FocusReturn {
        popup: overlay
    }

    function fit(): void {
        area.zoom = 0
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
        readonly property real step: Theme.px(64) // of an arrow key

        Accessible.name: overlay.name
        Accessible.role: Accessible.Dialog
        focus: true

        Keys.onDownPressed: area.moveBy(0, step)
        Keys.onLeftPressed: if (!area.moveBy(-step, 0)) overlay.stepWanted(-1)
        Keys.onRightPressed: if (!area.moveBy(step, 0)) overlay.stepWanted(1)
        Keys.onUpPressed: area.moveBy(0, -step)
        Keys.onPressed: event => {
            event.accepted = true
            if (event.key === Qt.Key_Plus || event.key === Qt.Key_Equal)
                area.zoomBy(1.25)
            else if (event.key === Qt.Key_Minus)
                area.zoomBy(1 / 1.25)
            else if (event.key === Qt.Key_0)
                area.zoom = 0
            else if (event.matches(StandardKey.Copy) && copyButton.enabled)
                overlay.copyWanted()
            else if (event.matches(StandardKey.Save) && saveButton.enabled)
                overlay.saveWanted()
            else
                event.accepted = false
        }

        ZoomArea {
            id: area

            anchors.fill: parent
            margins: Qt.size(Theme.gap8, Theme.px(64))
            natural: overlay.natural
            objectName: "viewerArea"

            onMissed: overlay.close()
        }
        Item {
            id: above

            anchors.fill: parent
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
                visible: area.canZoom

                onClicked: area.toggle(area.width / 2, area.height / 2)
            }
            ViewerButton {
                id: copyButton

                enabled: overlay.isReady
                objectName: "copyImageButton"
                symbol: "doc.on.doc"
                text: overlay.copyText

                onClicked: overlay.copyWanted()
            }
            ViewerButton {
                id: saveButton

                enabled: overlay.isReady
                objectName: "saveImageButton"
                symbol: "arrow.down.to.line"
                text: overlay.saveText

                onClicked: overlay.saveWanted()
            }
            ViewerButton {
                objectName: "closeButton"
                symbol: "xmark"
                text: "Закрыть"

                onClicked: overlay.close()
            }
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
        Timer {
            id: moment

            interval: Theme.feedback

            onTriggered: overlay.notice = ""
        }
    }
}
