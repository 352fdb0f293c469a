import QtQuick

// Says nothing while all is well; quietly names what is going on otherwise.
Row {
    id: state

    required property string status // "Connecting...", "Connected", "Reconnecting..." or "Failed"

    readonly property bool failed: status === "Failed"
    readonly property var texts: ({
        "Connecting...": "Соединение…",
        "Reconnecting...": "Переподключение…",
        "Failed": "Нет соединения"
    })

    signal reconnect

    spacing: Theme.gap2
    visible: label.text.length > 0

    Rectangle {
        anchors.verticalCenter: parent.verticalCenter
        color: state.failed ? Theme.err : Theme.t3
        height: width
        radius: width / 2
        width: Theme.px(6)
    }
    Label {
        id: label

        anchors.verticalCenter: parent.verticalCenter
        color: state.failed ? Theme.err : Theme.t2
        font.pixelSize: Theme.fontLabel
        objectName: "connectionStatus"
        text: state.texts[state.status] ?? ""
    }
    LinkButton {
        anchors.verticalCenter: parent.verticalCenter
        font.pixelSize: Theme.fontLabel
        objectName: "reconnectButton"
        text: "Подключиться"
        visible: state.failed

        onClicked: state.reconnect()
    }
}
