import QtQuick
import Korvi.Views // the types written in C++
import "Links.js" as Links

// An answer, or anything else in Markdown, in parts of which only those in view exist; selected and copied as one text.
// May grow at its end. Beneath it stand the sources that it cites.
Item {
    id: view

    property var content: text // a message, or a text
    property string text
    property bool isStreaming: false
    property color textColor: Theme.t1
    property AnswerContext context: null

    readonly property alias count: parts.count
    readonly property alias beginning: parts.beginning // for a screen reader
    readonly property alias extractedCitations: parts.citations

    signal caretMoved(real y, real height)
    signal copyWanted(string text)
    signal enlargeWanted(string code) // of a diagram

    // Larger, among the other images of this answer.
    function showImage(address: string): void {
        const images = parts.images()
        const index = images.findIndex(image => image.url === address) // qmllint disable
        if (context && index >= 0)
            context.imagesWanted(images, index)
        else
            Links.open(address)
    }

    function selectedText(): string {
        return selection.selectedText()
    }

    function deselect(): void {
        selection.deselect()
    }

    function selectAll(): void {
        selection.selectAll()
    }

    function takeCaret(): void {
        selection.takeCaret()
    }

    function plainText(): string {
        return parts.plainText()
    }

    function markdown(): string {
        return parts.markdown()
    }

    implicitHeight: column.implicitHeight + (sources.visible ? Theme.gap3 + sources.height : 0)

    AnswerParts {
        id: parts

        content: view.content
        isStreaming: view.isStreaming

        onModelReset: selection.span = null
    }
    TextStyle {
        id: style

        codeColor: Theme.icode
        color: view.textColor
        family: Theme.family
        monoFamily: Theme.monoFamily
        textSize: Theme.fontBody
    }
    PartSelection {
        id: selection

        column: column
        model: parts

        onCaretMoved: (y, height) => view.caretMoved(y, height)
    }
    PartColumn {
        id: column

        function selectedText(): string {
            return selection.selectedText()
        }

        gapScale: Theme.fontBody / 13
        model: parts
        objectName: "answerText"
        width: view.width

        // One file for each kind of part; a kind that is not listed is not shown. See PartKinds.h.
        // qmllint disable unqualified
        kinds: [
            PartKind {
                name: "text"

                TextPart {
                    id: textPart

                    color: view.textColor
                    parts: view.answerParts
                    style: view.textStyle

                    onCaretMoved: (y, height) => view.caretMoved(textPart.y + y, height)
                    onCopyWanted: view.copyWanted(view.selectedText())
                }
            },
            PartKind {
                name: "code"

                CodeBlockView {
                    id: code

                    onCaretMoved: (y, height) => view.caretMoved(code.y + y, height)
                    onCopyWanted: text => view.copyWanted(selection.span ? view.selectedText() : text)
                }
            },
            PartKind {
                name: "mermaid"

                MermaidView {
                    id: diagram

                    onCaretMoved: (y, height) => view.caretMoved(diagram.y + y, height)
                    onCopyWanted: text => view.copyWanted(selection.span ? view.selectedText() : text)
                    onEnlargeWanted: code => view.enlargeWanted(code)
                }
            },
            PartKind {
                name: "latex"

                LaTeXView {
                    id: latex

                    color: view.textColor

                    onCaretMoved: (y, height) => view.caretMoved(latex.y + y, height)
                    onCopyWanted: text => view.copyWanted(selection.span ? view.selectedText() : text)
                }
            },
            PartKind {
                name: "table"

                MarkdownTableView {
                    id: table

                    onCaretMoved: (y, height) => view.caretMoved(table.y + y, height)
                    onCopyWanted: text => view.copyWanted(selection.span ? view.selectedText() : text)
                }
            },
            PartKind {
                name: "image"

                ImageAttachmentView {
                    id: image

                    onCaretMoved: (y, height) => view.caretMoved(image.y + y, height)
                    onCopyWanted: text => view.copyWanted(selection.span ? view.selectedText() : text)
                    onOpened: address => view.showImage(address)
                }
            },
            PartKind {
                name: "video"

                VideoCard {
                    onLinkOpened: url => Links.open(url)
                }
            },
            PartKind {
                name: "file"

                FilePart {
                    context: view.context
                }
            },
            PartKind {
                name: "artifact"

                ArtifactPart {
                    context: view.context
                    isGenerating: view.isStreaming
                }
            },
            PartKind {
                name: "search"

                SearchPart {
                    context: view.context

                    onCopyWanted: text => view.copyWanted(text)
                }
            },
            PartKind {
                name: "searching"

                WebSearchInProgressView {}
            },
            PartKind {
                name: "generating"

                GeneratingPart {
                    context: view.context
                }
            }
        ]
        // qmllint enable unqualified
        estimate: PartHeights {
            readonly property string sample: "Обычный русский текст, по которому меряют ширину."

            characterWidth: metrics.advanceWidth(sample) / sample.length
            textSize: Theme.fontBody
            width: column.width
        }

        Keys.onPressed: event => {
            event.accepted = event.matches(StandardKey.Copy) && selection.span !== null
            if (event.accepted)
                view.copyWanted(view.selectedText())
        }

        FontMetrics {
            id: metrics

            font.family: Theme.family
            font.pixelSize: Theme.fontBody
        }
    }
    GrokCitationFooterView {
        id: sources

        sources: view.extractedCitations
        visible: sources.sources.length > 0
        width: view.width
        y: column.implicitHeight + Theme.gap3
    }

    readonly property AnswerParts answerParts: parts
    readonly property TextStyle textStyle: style
}
