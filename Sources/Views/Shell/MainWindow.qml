import QtQuick
import Korvi.ViewModels

Window {
    id: window

    required property AuthViewModel auth
    required property ChatViewModel chat

    // What the desktop or the user asked for.
    property string scheme: "system"
    property real textSize: 13
    property bool reducedMotion: false
    property string notice // what is wrong with the place where settings are kept; empty when all is well

    color: Theme.bg
    height: 800
    minimumHeight: 480
    minimumWidth: 420
    title: chat.activeChatName.length > 0 ? "%1 — Korvi".arg(chat.activeChatName) : "Korvi"
    visible: true
    width: 1200

    Binding { property: "scheme"; target: Theme; value: window.scheme }
    Binding { property: "textSize"; target: Theme; value: window.textSize }
    Binding { property: "reducedMotion"; target: Theme; value: window.reducedMotion }

    Loader {
        id: noticeBar

        property bool dismissed: false

        active: window.notice.length > 0 && !dismissed
        height: active ? implicitHeight : 0
        width: parent.width

        onActiveChanged: show()
        Component.onCompleted: show()

        // By address, so that a start without a notice does not load what shows one.
        function show(): void {
            if (active)
                setSource("NoticeBar.qml", { text: Qt.binding(() => window.notice) })
        }
    }
    Connections {
        function onDismissed() {
            noticeBar.dismissed = true
        }

        ignoreUnknownSignals: true
        target: noticeBar.item
    }
    ContentView {
        anchors.bottom: parent.bottom
        anchors.left: parent.left
        anchors.right: parent.right
        anchors.top: noticeBar.bottom
        auth: window.auth
        chat: window.chat
    }
}
