import QtQuick
import QtTest
import Korvi.Views

Item {
    id: root

    height: 700
    width: 800

    Loader {
        id: stage

        width: 600
    }
    Component {
        id: searchCard

        WebSearchResultsView {
            answer: []
            images: []
            query: "телескоп"
            responseTime: 1.4
            results: []
        }
    }
    Component {
        id: fileCard

        FileCard {
            filename: "отчёт.pdf"
            kind: "PDF"
            openable: true
        }
    }
    Component {
        id: artifactCard

        ArtifactCardView {
            isGenerating: false
            kindName: "python"
            title: "Скрипт"
        }
    }
    Component {
        id: detail

        ArtifactDetailView {
            artifactId: "a"
            height: 400
            isGenerating: true
            kindName: "python"
            text: ""
            title: "Скрипт"
            width: 600
        }
    }
    Component {
        id: skeletons

        Flickable {
            clip: true
            contentHeight: 2000
            height: 300
            width: 600

            GeneratingSkeleton {
                kind: "image"
                objectName: "skeleton"
                width: 400
                y: 1000
            }
        }
    }
    Component {
        id: panels

        SidePanel {
            property alias inside: field

            height: 500
            width: 800

            panel: FocusScope {
                Item {
                    focus: true
                    objectName: "inPanel"
                }
            }

            TextInput {
                id: field
            }
        }
    }
    Component {
        id: kindOf

        ArtifactKind {}
    }
    SignalSpy {
        id: spy
    }

    TestCase {
        name: "Cards"
        when: windowShown

        function init() {
            failOnWarning(/./)
            Theme.reducedMotion = true
        }

        function cleanup() {
            stage.sourceComponent = null
            Theme.reducedMotion = false
        }

        function show(component) {
            stage.sourceComponent = component
            return stage.item
        }

        function listen(item, signalName) {
            spy.target = null
            spy.signalName = signalName
            spy.target = item
            spy.clear()
        }

        function found(count) {
            return [...Array(count).keys()].map(i => ({ title: "Источник " + i, url: "https://s.example/" + i,
                content: "Текст", favicon: "", domain: "s.example", description: "" }))
        }

        // Of all items below, at any depth.
        function all(item, test) {
            const found = test(item) ? [item] : []
            for (let i = 0; i < item.children.length; ++i)
                found.push(...all(item.children[i], test))
            return found
        }

        function test_foldedSearchHoldsNothing() {
            const card = show(searchCard)
            card.results = found(20)
            card.images = found(9)
            card.answer = ["Ответ"]
            compare(card.summary, " · «телескоп» · 20 источников · 1,4 с")
            compare(all(card, item => item instanceof SourceCard || item instanceof SearchImage).length, 0)
        }

        function test_carouselsShowTheFirstAndTheButtonLeadsToTheRest() {
            const card = show(searchCard)
            card.results = found(11)
            card.images = found(7)
            card.answer = ["Ответ"]
            card.unfolded = true
            compare(all(card, item => item instanceof SourceCard).length, 8)
            compare(all(card, item => item instanceof SearchImage).length, 6)
            const rest = all(card, item => item.objectName === "restButton" && item.visible)
            compare(rest.map(button => button.text), ["+3", "+1"])
            compare(rest[0].Accessible.name, "Ещё 3 источника")

            listen(card, "tabChosen")
            rest[0].clicked()
            compare(spy.signalArguments[0][0], "sources")
            // What is on another tab is gone.
            tryVerify(() => all(card, item => item instanceof SearchImage).length === 0)
            compare(all(card, item => item instanceof SourceRow).length, 11)
            compare(all(card, item => item instanceof SourceCard).length, 0)
        }

        function test_noButtonWithoutARest() {
            const card = show(searchCard)
            card.results = found(8)
            card.images = found(6)
            card.unfolded = true
            compare(all(card, item => item.objectName === "restButton" && item.visible).length, 0)
        }

        function test_tabsByTheKeyboard() {
            const card = show(searchCard)
            card.results = found(9)
            card.images = found(2)
            card.answer = ["Ответ"]
            card.forceActiveFocus()
            keyClick(Qt.Key_Return)
            verify(card.unfolded)
            keyClick(Qt.Key_Tab)
            compare(card.Window.activeFocusItem.objectName, "answerTab")
            keyClick(Qt.Key_Right)
            compare(card.currentTab, "sources")
            keyClick(Qt.Key_Right)
            keyClick(Qt.Key_Right)
            compare(card.currentTab, "images")
            compare(card.Window.activeFocusItem.objectName, "imagesTab")
        }

        function test_onlyTabsThatHoldSomething() {
            const card = show(searchCard)
            card.results = found(3)
            compare(card.tabs, ["sources"])
            card.results = []
            compare(card.tabs, [])
            verify(!findChild(card, "searchHeader").enabled)
            card.images = found(1)
            compare(card.tabs, ["answer", "images"])
        }

        function test_aSourceIsOpenedByItsAddress() {
            const card = show(searchCard)
            card.results = found(2)
            card.unfolded = true
            listen(card, "linkOpened")
            all(card, item => item instanceof SourceRow)[1].clicked()
            compare(spy.signalArguments[0][0], "https://s.example/1")
        }

        function test_fileCardOffersWhatFits() {
            const card = show(fileCard)
            const button = findChild(card, "saveButton")
            compare(button.text, "Сохранить в Загрузки")
            card.isRunning = true
            compare(button.text, "Отменить загрузку")
            card.isRunning = false
            card.savedName = "отчёт.pdf"
            compare(button.text, "Показать в папке")
            card.openable = false
            compare(findChild(card, "openButton").text, "Показать файл отчёт.pdf в папке")
        }

        function test_aShimmerMovesOnlyWhereItIsSeen() {
            Theme.reducedMotion = false
            const area = show(skeletons)
            const shimmer = findChild(area, "shimmer")
            tryVerify(() => !shimmer.moves)
            area.contentY = 900
            tryVerify(() => shimmer.moves)
            area.contentY = 0
            tryVerify(() => !shimmer.moves)
            area.contentY = 900
            tryVerify(() => shimmer.moves)
            Theme.reducedMotion = true
            tryVerify(() => !shimmer.moves)
        }

        function test_kinds_data() {
            return [
                { kind: "HTML", label: "HTML", preview: ArtifactKind.Page, extension: "html" },
                { kind: "svg", label: "SVG", preview: ArtifactKind.Page, extension: "svg" },
                { kind: "mermaid", label: "Diagram", preview: ArtifactKind.Diagram, extension: "mmd" },
                { kind: "markdown", label: "Markdown", preview: ArtifactKind.Document, extension: "md" },
                { kind: "React", label: "React", preview: ArtifactKind.NoPreview, extension: "jsx" },
                { kind: "code", label: "Code", preview: ArtifactKind.NoPreview, extension: "txt" },
                { kind: "latex", label: "Latex", preview: ArtifactKind.NoPreview, extension: "tex" },
                { kind: "", label: "", preview: ArtifactKind.NoPreview, extension: "txt" },
            ].map(row => Object.assign(row, { tag: row.kind }))
        }

        function test_kinds(row) {
            const kind = createTemporaryObject(kindOf, root, { name: row.kind })
            compare(kind.label, row.label)
            compare(kind.preview, row.preview)
            compare(kind.extension, row.extension)
        }

        function test_artifactCardSaysWhatItIs() {
            const card = show(artifactCard)
            const details = findChild(card, "artifactDetails")
            compare(details.text, "Python")
            card.isGenerating = true
            compare(details.text, "Python · пишу…")
            card.version = 2
            compare(details.text, "Python · версия 2 · пишу…")
            card.kindName = "loading"
            card.title = ""
            compare(findChild(card, "artifactButton").text, "Создаю документ…")
            compare(details.text, "Готовлю…")
            card.isGenerating = false // and nobody will tell
            compare(findChild(card, "artifactButton").text, "Без названия")
            compare(details.text, "")
            listen(card, "chosen")
            card.forceActiveFocus()
            keyClick(Qt.Key_Space)
            compare(spy.count, 1)
        }

        function test_detailFollowsWhatIsWrittenUntilOneReadsBack() {
            const view = show(detail)
            const area = findChild(view, "artifactBody").item
            const more = () => view.text += "строка кода\n".repeat(30)
            for (let i = 0; i < 5; ++i) {
                more()
                area.column.forceLayout()
                wait(0)
            }
            verify(area.contentHeight > view.height)
            tryVerify(() => area.atYEnd)

            area.column.scrollTo(100)
            area.column.forceLayout()
            verify(!area.following)
            const place = area.column.position
            more()
            area.column.forceLayout()
            compare(area.column.position, place)

            view.isGenerating = false
            wait(0)
            area.column.forceLayout()
            compare(area.column.position, place)
        }

        function test_detailShowsTheEndOfItAsADocument() {
            const view = show(detail)
            view.kindName = "markdown"
            view.text = "# Заголовок\n\nАбзац"
            const body = findChild(view, "artifactBody")
            compare(body.item.form, "document")
            verify(!findChild(view, "previewTab") || !findChild(view, "previewTab").visible)
            view.isGenerating = false
            tryVerify(() => findChild(view, "codeTab").visible)
            findChild(view, "codeTab").clicked()
            compare(body.item.form, "code")
            view.version = 2
            compare(body.item.form, "document")
        }

        function test_detailOfWhatNobodyNamedShowsItsText() {
            const view = show(detail)
            view.kindName = "loading"
            view.title = ""
            compare(findChild(view, "artifactTitle").text, "Создаю документ…")
            view.text = "строка"
            view.isGenerating = false
            compare(findChild(view, "artifactTitle").text, "Без названия")
            compare(findChild(view, "artifactHeaderDetails").text, "")
            compare(findChild(view, "artifactBody").item.form, "code")
            compare(view.fileName, "Artifact.txt")
        }

        function test_detailIsLeftByEscape() {
            const view = show(detail)
            listen(view, "closed")
            view.forceActiveFocus()
            keyClick(Qt.Key_Escape)
            compare(spy.count, 1)
        }

        function test_panelTakesTheKeyboardAndGivesItBack() {
            const panel = show(panels)
            panel.inside.forceActiveFocus()
            panel.open = true
            tryVerify(() => panel.Window.activeFocusItem.objectName === "inPanel")
            panel.open = false
            verify(panel.inside.activeFocus)

            panel.width = 500
            panel.open = true
            verify(panel.covers)
            compare(panel.panelWidth, 500)
            verify(!panel.inside.visible)

            listen(panel, "closeWanted")
            panel.width = 800
            findChild(panel, "panelBorder").forceActiveFocus()
            keyClick(Qt.Key_Escape)
            compare(spy.count, 1)

            panel.open = false
            panel.enabled = false // as under a drawer
            verify(panel.inside.visible)
        }
    }
}
