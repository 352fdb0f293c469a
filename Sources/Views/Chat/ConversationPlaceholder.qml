import QtQuick

// In place of the messages of a chat that have not come yet.
Column {
    id: placeholder

    required property bool isConnected

    spacing: Theme.gap3

    Spinner {
        anchors.horizontalCenter: parent.horizontalCenter
        running: placeholder.visible && placeholder.isConnected
    }
    Label {
        color: Theme.t2
        horizontalAlignment: Text.AlignHCenter
        text: placeholder.isConnected ? "Загружаем сообщения…" : "Сообщения появятся, когда вернётся связь"
        width: parent.width
        wrapMode: Text.Wrap
    }
}
