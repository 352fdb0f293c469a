import QtQuick
import Korvi.Views // the types written in C++

// A document that an answer has made, beside the conversation: as it is written, then as it looks and as its text.
FocusScope {
    id: view

    required property string artifactId
    property real version: -1 // below 0 without one
    required property string title // empty when none has been told
    required property string kindName
    required property var text // a SharedText, or a string
    required property bool isGenerating
    property bool isDownloadingPDF: false
    property string pdfURL // the path of the file; empty without one
    property bool showShareSheet: false // what is to be done with the PDF
    property string pdfError // empty without one
    property string module: "qrc:/qt-project.org/imports/Korvi/Views/"

    property string tab: "preview" // or "code"
    readonly property bool hasPreview: kind.preview !== ArtifactKind.NoPreview && !isGenerating
    readonly property bool showsPreview: hasPreview && tab === "preview"
    readonly property string fileName: (title || "Artifact").replace(/[/:]/g, "_") + "." + kind.extension

    signal closed
    signal copyWanted(string text)
    signal saveWanted(string name)
    signal pdfWanted
    signal pdfOpened
    signal pdfSaved
    signal pdfShown // in its folder
    signal pdfDismissed

    readonly property string heading: title || (isGenerating ? "Создаю документ…" : "Без названия")

    Accessible.name: heading
    Accessible.role: Accessible.Pane

    Keys.onEscapePressed: closed()
    Keys.onPressed: event => {
        if (event.matches(StandardKey.Save))
            saveWanted(fileName)
        else if (event.key === Qt.Key_F6)
            (body.activeFocus ? header : body).forceActiveFocus(Qt.TabFocusReason)
        else
            return
        event.accepted = true
    }
    // Another document begins as it looks.
    onArtifactIdChanged: tab = "preview"
    onVersionChanged: tab = "preview"

    ArtifactKind {
        id: kind

        name: view.kindName
    }
    Rectangle {
        anchors.fill: parent
        color: Theme.bg
    }
    ArtifactHeader {
        id: header

        busy: view.isDownloadingPDF
        generating: view.isGenerating
        details: kind.details(kind.label, view.version, view.isGenerating)
        tab: view.tab
        tabsShown: view.hasPreview
        title: view.heading
        width: parent.width

        onClosed: view.closed()
        onCopyWanted: view.copyWanted(String(view.text))
        onPdfWanted: view.pdfWanted()
        onSaveWanted: view.saveWanted(view.fileName)
        onTabChosen: tab => view.tab = tab
    }
    Loader {
        id: body

        anchors.bottom: strips.top
        anchors.left: parent.left
        anchors.right: parent.right
        anchors.top: header.bottom
        focus: true
        objectName: "artifactBody"


        // By address, for the sandbox is rarely needed; and with all it has to know from its beginning.
        readonly property string file: view.showsPreview && kind.preview === ArtifactKind.Page ? "ArtifactPageView.qml"
            : "ArtifactTextView.qml"

        Component.onCompleted: show()
        onFileChanged: show()

        function show(): void {
            setSource(view.module + file, { text: view.text, kindName: view.kindName, focus: true,
                isGenerating: view.isGenerating, showsPreview: view.showsPreview })
        }
    }
    Binding { property: "text"; target: body.item; value: view.text }
    Binding { property: "kindName"; target: body.item; value: view.kindName }
    Binding { property: "isGenerating"; target: body.item; value: view.isGenerating }
    Binding { property: "showsPreview"; target: body.item; value: view.showsPreview }
    Connections {
        function onCopyWanted(text) {
            view.copyWanted(text)
        }
        function onCodeWanted() {
            view.tab = "code"
        }

        ignoreUnknownSignals: true
        target: body.item
    }
    Column {
        id: strips

        anchors.bottom: parent.bottom
        anchors.bottomMargin: height > 0 ? Theme.gap4 : 0
        spacing: Theme.gap2
        width: parent.width - Theme.gap4 * 2
        x: Theme.gap4

        MessageStrip {
            dismissible: true
            objectName: "pdfError"
            text: view.pdfError
            visible: text.length > 0
            width: parent.width

            onDismissed: view.pdfDismissed()
        }
        ArtifactShareSheet {
            objectName: "shareSheet"
            path: view.pdfURL
            visible: view.showShareSheet
            width: parent.width

            onDismissed: view.pdfDismissed()
            onFolderWanted: view.pdfShown()
            onOpenWanted: view.pdfOpened()
            onSaveWanted: view.pdfSaved()
        }
    }
    Rectangle {
        color: Theme.line
        height: parent.height
        width: Theme.hairline
    }
}
