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
    property var kept: ({}) // what the reader did to its parts, by their numbers; for who makes it again

    readonly property alias count: parts.count
    readonly property alias beginning: parts.beginning // for a screen reader
    readonly property alias extractedCitations: parts.citations

    signal caretMoved(real y, real height)
    signal copyWanted(string text)
    signal diagramWanted(string code) // larger; without a context that does it

    function keptOf(part: int): var {
        kept[part] = kept[part] ?? {}
        return kept[part]
    }

    // Larger, among the other images of this answer.
    function showImage(address: string): void {
        const images = parts.images()
        const index = images.findIndex(image => image.url === address) // qmllint disable
        if (context && index >= 0)
            context.imagesWanted(images, index)
        else
            Links.open(address)
    }

    function showDiagram(code: string): void {
        if (context)
            context.diagramWanted(code)
        else
            diagramWanted(code)
    }

    // What stands there and is copied by itself: { kind, text }, or null.
    function sourceAt(x: real, y: real): var {
        const item = column.itemAt(column.partAt(y))
        const isThere = item && y >= item.y && y < item.y + item.height
        return isThere ? item.sourceAt?.(x - item.x, y - item.y) ?? null : null // qmllint disable
    }

    // The same of what has the keyboard.
    function focusedSource(): var {
        return column.itemAt(column.focusedPart())?.sourceAt?.(-1, -1) ?? null // qmllint disable
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

        // qmllint disable
        onPartMade: (part, item) => {
            item.caretMoved?.connect((y, height) => view.caretMoved(item.y + y, height))
            item.allWanted?.connect(() => selection.selectAll())
            item.copyWanted?.connect(text => view.copyWanted(item instanceof TextPart ? view.selectedText() : text))
        }
        // qmllint enable

        // One file for each kind of part; a kind that is not listed is not shown. See PartKinds.h.
        // qmllint disable unqualified
        kinds: [
            PartKind {
                name: "text"

                TextPart {
                    color: view.textColor
                    parts: view.answerParts
                    style: view.textStyle
                }
            },
            PartKind {
                name: "code"

                CodeBlockView {
                    required property int index

                    kept: view.keptOf(index)

                    onSpanCopyWanted: view.copyWanted(view.selectedText())
                }
            },
            PartKind {
                name: "mermaid"

                MermaidView {
                    required property int index

                    onEnlargeWanted: code => view.showDiagram(code)
                }
            },
            PartKind {
                name: "latex"

                LaTeXView {
                    required property int index

                    color: view.textColor
                }
            },
            PartKind {
                name: "table"

                MarkdownTableView {
                    required property int index

                    kept: view.keptOf(index)
                }
            },
            PartKind {
                name: "image"

                ImageAttachmentView {
                    required property int index

                    onOpened: address => view.showImage(address)
                }
            },
            PartKind {
                name: "video"

                VideoPart {
                    context: view.context
                }
            },
            PartKind {
                name: "file"

                FilePart {
                    context: view.context
                }
            },
            PartKind {
                name: "music"

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
                    required property int index

                    context: view.context
                    kept: view.keptOf(index)
                }
            },
            PartKind {
                name: "searching"

                WebSearchInProgressView {}
            },
            PartKind {
                name: "generating"

                GeneratingPart {}
            }
        ]
        // qmllint enable unqualified
        estimate: PartHeights {
            characterWidth: character.width
            textSize: Theme.fontBody
            width: column.width
        }

        Keys.onPressed: event => {
            if (event.matches(StandardKey.Copy) && selection.span !== null)
                view.copyWanted(view.selectedText())
            else if (event.matches(StandardKey.SelectAll))
                selection.selectAll()
            else
                return
            event.accepted = true
        }

        AverageCharacter {
            id: character
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
