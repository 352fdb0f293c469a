import QtQuick
import "InputMode.js" as InputMode

// Under the text: what the next message is set to at the left, sending at the right.
Item {
    id: bar

    required property string mode // of InputMode.js
    required property bool canSend
    required property bool generating
    property bool hintShown: false

    signal modeChosen(mode: string)
    signal filesWanted(int filter)
    signal send
    signal stop

    readonly property var shownMode: InputMode.of(mode)

    implicitHeight: Theme.roundButton

    Row {
        id: left

        anchors.left: parent.left
        anchors.verticalCenter: parent.verticalCenter
        spacing: Theme.gap1

        IconButton {
            id: attachButton

            Accessible.role: Accessible.ButtonMenu
            anchors.verticalCenter: parent.verticalCenter
            hint: attachMenu.item ? "" : text
            objectName: "attachButton"
            symbol: "plus"
            text: "Прикрепить"

            onClicked: attachMenu.toggle({})
        }
        IconButton {
            id: modeButton

            Accessible.role: Accessible.ButtonMenu
            anchors.verticalCenter: parent.verticalCenter
            hint: menu.item ? "" : text
            objectName: "modeButton"
            symbol: "slider"
            text: "Режимы"
            visible: bar.mode === "none"

            onClicked: menu.toggle({ mode: bar.mode })
        }
        Chip {
            id: modeChip

            Accessible.role: Accessible.ButtonMenu
            anchors.verticalCenter: parent.verticalCenter
            closeText: "Выключить режим"
            objectName: "modeChip"
            symbol: bar.shownMode.symbol ?? ""
            text: bar.shownMode.chip ?? ""
            visible: bar.mode !== "none"

            onClicked: menu.toggle({ mode: bar.mode })
            onClosed: bar.modeChosen("none")
        }
    }
    OnDemand {
        id: attachMenu

        anchors.fill: left
        source: "qrc:/qt-project.org/imports/Korvi/Views/AttachMenu.qml"
    }
    OnDemand {
        id: menu

        anchors.fill: left
        source: "qrc:/qt-project.org/imports/Korvi/Views/ModeMenu.qml"
    }
    // Later: once the menu has given the keyboard back.
    Connections {
        function onChosen(filter) {
            Qt.callLater(bar.filesWanted, filter) // qmllint disable
        }

        target: attachMenu.item
    }
    Connections {
        function onChosen(mode) {
            Qt.callLater(bar.modeChosen, mode) // qmllint disable
        }

        target: menu.item
    }
    Label {
        anchors.right: right.left
        anchors.rightMargin: Theme.gap3
        anchors.verticalCenter: parent.verticalCenter
        color: Theme.t3
        font.pixelSize: Theme.fontSmall
        opacity: bar.hintShown && x > left.x + left.width + Theme.gap3 ? 1 : 0
        text: "Shift+Enter — новая строка"

        Behavior on opacity { NumberAnimation { duration: Theme.calm } }
    }
    Item {
        id: right

        anchors.right: parent.right
        height: parent.height
        width: Theme.roundButton

        RoundButton {
            enabled: bar.canSend
            objectName: "sendButton"
            prominent: true
            symbol: "arrow.up"
            text: "Отправить"
            visible: !bar.generating

            onClicked: bar.send()
        }
        RoundButton {
            objectName: "stopButton"
            prominent: true
            symbol: "stop"
            text: "Остановить ответ"
            visible: bar.generating

            onClicked: bar.stop()
        }
    }
}
