import QtQuick
import QtMultimedia
import Korvi.Views // the types written in C++
import "Links.js" as Links
import "Russian.js" as Russian

// Plays a video when its file has come. Loaded with the first video that is played.
FocusScope {
    id: view

    required property string url // where it comes from
    property url file // on this machine; empty until it has come
    property double progress: -1 // of its coming, 0 to 1; -1 while it is unknown
    property string fetchError // empty unless it does not come

    readonly property bool isBuffering: String(file).length === 0 || player.mediaStatus === MediaPlayer.LoadingMedia
        || player.mediaStatus === MediaPlayer.StalledMedia
    readonly property bool isPlaying: player.playbackState === MediaPlayer.PlayingState
    // Milliseconds; 0 while it is unknown, and so it remains with files that do not tell it of each track, as WebM.
    readonly property real duration: player.duration // qmllint disable
    readonly property real position: player.position // qmllint disable
    property string errorMessage // empty without one

    signal linkOpened(string url)
    signal fileWanted

    function startStreaming(): void {
        errorMessage = ""
        if (!Links.isMedia(url)) {
            errorMessage = "Неверный URL"
            return
        }
        if (String(file).length === 0) {
            fileWanted()
            return
        }
        // What has ended is opened again: the player may take the end of the last time for that of the next.
        player.source = ""
        player.source = file
        player.play()
    }

    function toggle(): void {
        if (isPlaying)
            player.pause()
        else if (player.mediaStatus === MediaPlayer.EndOfMedia)
            startStreaming()
        else
            player.play()
    }

    function seek(milliseconds: real): void {
        if (duration > 0)
            player.position = Math.max(0, Math.min(duration, position + milliseconds))
    }

    Accessible.name: "Видео"
    Accessible.role: Accessible.Grouping
    objectName: "videoPlayer"

    Component.onCompleted: startStreaming()
    onFetchErrorChanged: errorMessage = fetchError
    onFileChanged: startStreaming()
    Keys.onLeftPressed: seek(-5000)
    Keys.onRightPressed: seek(5000)
    Keys.onSpacePressed: toggle()

    MediaPlayer {
        id: player

        audioOutput: AudioOutput {
            muted: mute.checked
        }
        videoOutput: output

        onErrorOccurred: (error, text) => view.errorMessage = text || "Ошибка загрузки"
    }
    VideoOutput {
        id: output

        anchors.fill: parent
    }
    HoverHandler {
        id: hover
    }
    TapHandler {
        onTapped: view.toggle()
    }
    FocusRing {
        around: Theme.radiusCard
        shown: view.activeFocus
    }
    Spinner {
        anchors.centerIn: parent
        color: Theme.stageText
        running: view.isBuffering && view.errorMessage.length === 0
    }
    Label {
        anchors.centerIn: parent
        anchors.verticalCenterOffset: Theme.gap8
        color: Theme.stageText
        font.pixelSize: Theme.fontSmall
        text: "Загружаю… %1 %".arg(Math.round(view.progress * 100))
        visible: view.isBuffering && view.errorMessage.length === 0 && view.progress >= 0
    }
    Rectangle {
        id: controls

        anchors.bottom: parent.bottom
        color: Theme.stageScrim
        height: Theme.px(44)
        opacity: hover.hovered || !view.isPlaying || view.activeFocus ? 1 : 0
        radius: Theme.radiusCard
        visible: opacity > 0 && view.errorMessage.length === 0
        width: parent.width

        Behavior on opacity { NumberAnimation { duration: Theme.quick } }

        IconButton {
            id: playButton

            anchors.left: parent.left
            anchors.leftMargin: Theme.gap2
            anchors.verticalCenter: parent.verticalCenter
            color: Theme.stageText
            objectName: "pauseButton"
            symbol: view.isPlaying ? "pause" : "play"
            text: view.isPlaying ? "Пауза" : "Воспроизвести"

            onClicked: view.toggle()
        }
        Label {
            id: time

            anchors.left: playButton.right
            anchors.leftMargin: Theme.gap1
            anchors.verticalCenter: parent.verticalCenter
            color: Theme.stageText
            font.pixelSize: Theme.fontSmall
            text: Russian.clock(view.position) + (view.duration > 0 ? " / " + Russian.clock(view.duration) : "")
        }
        Item {
            anchors.left: time.right
            anchors.leftMargin: Theme.gap3
            anchors.right: mute.left
            anchors.rightMargin: Theme.gap3
            height: parent.height
            visible: view.duration > 0

            Rectangle {
                anchors.verticalCenter: parent.verticalCenter
                color: Theme.stageText
                height: Theme.px(4)
                opacity: 0.35
                radius: height / 2
                width: parent.width
            }
            Rectangle {
                anchors.verticalCenter: parent.verticalCenter
                color: Theme.stageText
                height: Theme.px(4)
                radius: height / 2
                width: view.duration > 0 ? parent.width * view.position / view.duration : 0
            }
            MouseArea {
                anchors.fill: parent

                onClicked: mouse => player.position = view.duration * mouse.x / width
            }
        }
        IconButton {
            id: mute

            anchors.right: outside.left
            anchors.verticalCenter: parent.verticalCenter
            checkable: true
            color: Theme.stageText
            opacity: checked ? 0.5 : 1
            symbol: "waveform"
            text: checked ? "Включить звук" : "Выключить звук"
        }
        IconButton {
            id: outside

            anchors.right: parent.right
            anchors.rightMargin: Theme.gap2
            anchors.verticalCenter: parent.verticalCenter
            color: Theme.stageText
            symbol: "arrow.up.right.square"
            text: "Открыть в браузере"

            onClicked: {
                player.pause()
                view.linkOpened(view.url)
            }
        }
    }
    VideoFailure {
        anchors.centerIn: parent
        message: view.errorMessage
        visible: message.length > 0
        width: parent.width - Theme.gap6 * 2

        onAgainWanted: view.startStreaming()
    }
}
