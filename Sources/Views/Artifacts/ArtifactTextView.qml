import QtQuick
import QtQuick.Templates as T
import Korvi.Views // the types written in C++

// The text of a document: as code, or as the document that it describes. While it is written its end is followed, until
// the reader goes back in it.
Flickable {
    id: area

    property var text: "" // a SharedText, or a string
    property string kindName
    property bool isGenerating: false
    property bool showsPreview: false

    readonly property alias column: column
    readonly property alias following: column.following
    readonly property string form: kind.preview === ArtifactKind.Document && (showsPreview || isGenerating) ? "document"
        : kind.preview === ArtifactKind.Diagram && showsPreview ? "diagram" : "code"
    property bool grew: false // it was written while it was shown

    signal copyWanted(string text)

    T.ScrollBar.vertical: ThinScrollBar {}
    activeFocusOnTab: true
    boundsBehavior: Flickable.StopAtBounds
    clip: true
    contentWidth: width
    flickableDirection: Flickable.VerticalFlick
    objectName: "artifactText"

    Keys.onPressed: event => {
        const page = height * 0.9
        const steps = { [Qt.Key_Up]: -Theme.px(40), [Qt.Key_Down]: Theme.px(40), [Qt.Key_PageUp]: -page,
            [Qt.Key_PageDown]: page, [Qt.Key_Home]: -contentHeight, [Qt.Key_End]: contentHeight }
        event.accepted = event.key in steps
        if (event.accepted)
            column.scrollBy(steps[event.key])
    }
    // What is complete is read from its beginning.
    Component.onCompleted: {
        if (!isGenerating)
            column.positionAtRow(0)
    }
    onIsGeneratingChanged: grew = grew || isGenerating
    onFormChanged: {
        if (!grew)
            column.positionAtRow(0)
    }

    ArtifactKind {
        id: kind

        name: area.kindName
    }
    AnswerViewers {
        id: viewers

        onCopyWanted: text => area.copyWanted(text)
    }
    ListModel {
        id: one

        ListElement { part: "all" }
    }
    VirtualColumn {
        id: column

        bottomPadding: Theme.gap4
        flickable: area
        model: one
        topPadding: Theme.gap4
        width: area.width

        // qmllint disable unqualified
        delegate: Item {
            required property int index

            implicitHeight: Math.ceil(content.height)
            width: column.width

            Loader {
                id: content

                sourceComponent: area.form === "document" ? document : area.form === "diagram" ? diagram : code
                width: Math.min(parent.width - Theme.gap4 * 2, area.form === "code" ? parent.width : Theme.px(Theme.readingWidth))
                x: Math.round((parent.width - width) / 2)
            }
        }
        // qmllint enable unqualified
    }
    Component {
        id: code

        // qmllint disable unqualified
        CodeBlockView {
            code: area.text
            isOpen: area.isGenerating
            language: kind.language
            wraps: kind.language.length === 0

            onCopyWanted: text => area.copyWanted(text)
        }
        // qmllint enable unqualified
    }
    Component {
        id: document

        // qmllint disable unqualified
        AdvancedMarkdownText {
            content: area.text
            isStreaming: area.isGenerating

            onCopyWanted: text => area.copyWanted(text)
            onDiagramWanted: code => viewers.showDiagram(code)
        }
        // qmllint enable unqualified
    }
    Component {
        id: diagram

        // qmllint disable unqualified
        MermaidView {
            code: String(area.text)

            onCopyWanted: text => area.copyWanted(text)
            onEnlargeWanted: code => viewers.showDiagram(code)
        }
        // qmllint enable unqualified
    }
}
