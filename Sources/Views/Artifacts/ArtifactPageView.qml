import QtQuick
import Korvi.Views // the types written in C++

// A document as it looks and works in its sandbox. Loaded when one is looked at; the sandbox ends with it.
FocusScope {
    id: page

    property var text: "" // a SharedText, or a string
    property string kindName
    property bool isGenerating: false
    property bool showsPreview: true

    signal codeWanted

    Rectangle {
        anchors.fill: parent
        color: Theme.paper
        visible: preview.status === ArtifactPreview.Ready
    }
    ArtifactPreview {
        id: preview

        Accessible.name: "Просмотр документа"
        Accessible.role: Accessible.WebDocument
        anchors.fill: parent
        focus: true
        kind: page.kindName
        objectName: "preview"
        text: String(page.text)
        visible: status === ArtifactPreview.Ready
    }
    Spinner {
        anchors.centerIn: parent
        running: preview.status === ArtifactPreview.Starting
    }
    Column {
        anchors.centerIn: parent
        spacing: Theme.gap3
        visible: preview.status === ArtifactPreview.Failed
        width: Math.min(parent.width - Theme.gap6 * 2, Theme.px(320))

        Symbol {
            anchors.horizontalCenter: parent.horizontalCenter
            color: Theme.t3
            name: "exclamationmark.triangle"
            size: Theme.px(24)
        }
        Label {
            color: Theme.t2
            horizontalAlignment: Text.AlignHCenter
            objectName: "previewFailure"
            text: "Не удалось показать документ."
            width: parent.width
            wrapMode: Text.Wrap
        }
        Row {
            anchors.horizontalCenter: parent.horizontalCenter
            spacing: Theme.gap2

            SecondaryButton {
                text: "Повторить"

                onClicked: preview.restart()
            }
            SecondaryButton {
                text: "Показать код"

                onClicked: page.codeWanted()
            }
        }
    }
}
