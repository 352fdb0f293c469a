import QtQuick
import Korvi.ViewModels

// Decides which screen is seen: the splash until the first check of the token is over, then the main screen, the one
// that says there is no network, or the sign-in. Only that screen exists.
FocusScope {
    id: root

    required property AuthViewModel auth
    required property ChatViewModel chat
    required property HomeViewModel home
    required property FileDownloads downloads
    required property ArtifactExport artifactFiles

    readonly property string screen: !auth.isInitialCheckComplete ? ""
        : auth.isAuthenticated ? "HomeView.qml"
        : auth.hasNetworkError ? "NoConnectionView.qml" : "LoginView.qml"

    function show(): void {
        if (screen === "HomeView.qml")
            screenLoader.setSource(screen, { auth: root.auth, chat: root.chat, downloads: root.downloads,
                artifactFiles: root.artifactFiles })
        else if (screen.length > 0)
            screenLoader.setSource(screen, { auth: root.auth })
    }

    focus: true

    Component.onCompleted: show()
    onScreenChanged: show()

    Loader {
        id: screenLoader

        anchors.fill: parent
        focus: true
    }
    Connections {
        // Of the main screen.
        function onSettingsRequested() {
            root.home.openSettings()
        }
        // Of the one without a network.
        function onRetry() {
            root.home.retryConnection()
        }

        ignoreUnknownSignals: true
        target: screenLoader.item
    }
    Loader {
        active: !root.auth.isInitialCheckComplete || opacity > 0
        anchors.fill: parent
        opacity: root.auth.isInitialCheckComplete ? 0 : 1

        sourceComponent: SplashView {}

        Behavior on opacity { NumberAnimation { duration: Theme.splashFade } }
    }
}
