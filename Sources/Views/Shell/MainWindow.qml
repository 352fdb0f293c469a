import QtQuick
import Korvi.ViewModels

Window {
    id: window

    required property AuthViewModel auth
    required property ChatViewModel chat
    required property HomeViewModel home
    required property AIDataConsent consent
    required property Onboarding onboarding
    required property ThemeManager theme
    required property FileDownloads downloads
    required property ArtifactExport artifactFiles

    property string notice // what is wrong with the place where settings are kept; empty when all is well

    color: Theme.bg
    height: 800
    minimumHeight: 480
    minimumWidth: 420
    title: chat.activeChatName.length > 0 ? "%1 — Korvi".arg(chat.activeChatName) : "Korvi"
    visible: true
    width: 1200

    // Our controls take theirs from Theme; Qt's own file dialog, where the desktop has none, takes these.
    palette {
        base: Theme.raise
        brightText: Theme.onacc
        button: Theme.sunk
        buttonText: Theme.t1
        dark: Theme.line2
        highlight: Theme.acc
        highlightedText: Theme.onacc
        light: Theme.bg
        mid: Theme.line2
        midlight: Theme.sunk
        placeholderText: Theme.t3
        shadow: "black"
        text: Theme.t1
        window: Theme.bg
        windowText: Theme.t1
    }

    Binding { property: "scheme"; target: Theme; value: window.theme.scheme }
    Binding { property: "textSize"; target: Theme; value: window.theme.chatFontSize }
    Binding { property: "reducedMotion"; target: Theme; value: window.theme.reducedMotion }

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
        id: content

        anchors.bottom: parent.bottom
        anchors.left: parent.left
        anchors.right: parent.right
        anchors.top: noticeBar.bottom
        artifactFiles: window.artifactFiles
        auth: window.auth
        chat: window.chat
        downloads: window.downloads
        home: window.home
    }
    FirstRunSheets {
        chat: window.chat
        consent: window.consent
        onboarding: window.onboarding

        // The screen below may be another one by now.
        onClosed: content.forceActiveFocus()
    }
}
