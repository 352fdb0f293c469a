import QtQuick
import QtTest
import Korvi.Views

Item {
    id: root

    height: 500
    width: 600

    Flickable {
        id: area

        anchors.fill: parent
        contentHeight: answer.implicitHeight

        AdvancedMarkdownText {
            id: answer

            width: root.width
        }
    }
    SignalSpy {
        id: copied

        signalName: "copyWanted"
        target: answer
    }

    TestCase {
        name: "Answer"
        when: windowShown

        readonly property string text: "Первый абзац с `кодом`.\n\n```py\na = 1\nb = 2\n```\n\nМежду ними $x^2$ и слово.\n\n"
            + "| А | Б |\n|---|---|\n| 1 | 2 |\n\n- раз\n- два"

        function init() {
            failOnWarning(/./)
            answer.isStreaming = false
            answer.deselect()
            answer.kept = {}
            answer.text = ""
            answer.text = text
            wait(0)
        }

        function part(index) {
            return findChild(answer, "answerText").itemAt(index)
        }

        function test_everyKindHasItsPlaceAndNothingOverlaps() {
            const column = findChild(answer, "answerText")
            let below = -1
            for (let i = 0; i < answer.count; ++i) {
                const item = part(i)
                verify(item, "part " + i)
                verify(item.height > 10, "part " + i)
                verify(item.y > below, "part " + i)
                below = item.y + item.height
            }
            compare(answer.count, 5)
            verify(column.implicitHeight >= below)
        }

        function test_dragSelectsOverTextCodeAndTable() {
            const first = part(0)
            const last = part(4)
            const y = item => item.mapToItem(root, 0, item.height / 2).y
            mousePress(root, 60, y(first))
            for (let at = y(first); at <= y(last); at += 6)
                mouseMove(root, 60, at, 0, Qt.LeftButton)
            mouseMove(root, 60, last.mapToItem(root, 0, last.height - 4).y, 0, Qt.LeftButton)
            wait(0)
            mouseRelease(root, 60, y(last))
            const selected = answer.selectedText()
            verify(selected.indexOf("a = 1\nb = 2") > 0, selected)
            verify(selected.indexOf("Между ними $x^2$ и слово.\n\nА\tБ\n1\t2\n\n• раз") > 0, selected)
            compare(part(1).selectedText, "a = 1\nb = 2")
            copied.clear()
            keySequence("Ctrl+C")
            compare(copied.count, 1)
            compare(copied.signalArguments[0][0], selected)

            // It stays while the answer goes on, and goes with the next press.
            answer.text = text + "\n\nЕщё абзац"
            wait(0)
            compare(answer.selectedText(), selected)
            mouseClick(root, 60, y(first))
            wait(0)
            compare(answer.selectedText(), "")
            compare(part(1).selectedText, "")
        }

        function test_dragThatBeginsInATableGoesOn() {
            const table = part(3)
            const y = (item, at) => item.mapToItem(root, 0, at).y
            mousePress(root, 60, y(table, 4))
            mouseMove(root, 60, y(table, table.height - 6), 0, Qt.LeftButton)
            wait(0)
            compare(answer.selectedText().trim(), "А\tБ\n1\t2")
            mouseMove(root, 60, y(part(4), 10), 0, Qt.LeftButton)
            mouseMove(root, 300, y(part(4), 10), 0, Qt.LeftButton)
            wait(0)
            verify(answer.selectedText().endsWith("А\tБ\n1\t2\n\n• раз"), answer.selectedText())
            // Up again, over where it began.
            mouseMove(root, 60, y(part(1), part(1).height / 2), 0, Qt.LeftButton)
            mouseMove(root, 5, y(part(1), part(1).height / 2), 0, Qt.LeftButton)
            wait(0)
            mouseRelease(root, 5, y(part(1), part(1).height / 2))
            verify(answer.selectedText().endsWith("Между ними $x^2$ и слово."), answer.selectedText())
            copied.clear()
            keySequence("Ctrl+C")
            compare(copied.count, 1)
            compare(copied.signalArguments[0][0], answer.selectedText())
        }

        function test_buttonsCopyTheirPartWhateverIsSelected() {
            answer.selectAll()
            for (const [name, text] of [["copyCodeButton", "a = 1\nb = 2"], ["copyTableButton", "А\tБ\n1\t2"]]) {
                copied.clear()
                mouseClick(findChild(answer, name))
                compare(copied.count, 1)
                compare(copied.signalArguments[0][0].trim(), text)
            }
        }

        function test_whatIsThereCanBeCopiedByItself() {
            const at = (item, x, y) => answer.sourceAt(item.x + x, item.y + y)
            const words = part(2)
            compare(at(part(0), 5, 5), null)
            compare(at(part(1), 50, 50), { kind: "code", text: "a = 1\nb = 2" })
            compare(at(part(3), 50, 20).kind, "table")
            const formula = findChild(words, "formulaSource")
            const place = formula.mapToItem(answer, formula.width / 2, formula.height / 2)
            compare(answer.sourceAt(place.x, place.y), { kind: "formula", text: "x^2" })
            compare(at(words, 3, 5), null)
            part(3).takeCaret()
            compare(answer.focusedSource().kind, "table")
        }

        function test_partsThatAreMadeAgainAreAsTheyWereLeft() {
            const wide = "```\n" + "длинная строка ".repeat(30) + "\n```\n\n" + "|" + "Длинноеслово|".repeat(20) + "\n"
                + "|-".repeat(20) + "|\n\n```\n" + "другая строка ".repeat(30) + "\n```"
            const area = item => {
                const found = findChild(item, "sidewaysArea")
                verify(found)
                return found
            }
            answer.text = wide
            wait(0)
            area(part(0)).contentX = 120
            area(part(1)).contentX = 70
            findChild(part(2), "wrapButton").clicked()
            const height = part(2).height
            answer.text = ""
            wait(0)
            answer.text = wide
            wait(0)
            compare(area(part(0)).contentX, 120)
            compare(area(part(1)).contentX, 70)
            verify(!part(0).wraps)
            verify(part(2).wraps)
            compare(part(2).height, height)
        }

        function test_keyboardSelectsOverTheBorders() {
            answer.text = "Один.\n\n$$x$$\n\nДва слова.\n\n" + "```\nкод\n```\n\nКонец."
            wait(0)
            answer.takeCaret()
            const first = part(0)
            const second = part(2)
            verify(first.activeFocus)
            keyClick(Qt.Key_Right)
            for (let i = 0; i < 4; ++i)
                keyClick(Qt.Key_Right, Qt.ShiftModifier)
            compare(answer.selectedText(), "дин.")
            let presses = 0
            while (!second.activeFocus && ++presses < 10)
                keyClick(Qt.Key_Right, Qt.ShiftModifier)
            for (let i = 0; i < 3; ++i)
                keyClick(Qt.Key_Right, Qt.ShiftModifier)
            compare(answer.selectedText(), "дин.\n\n$$x$$\n\nДва")
            keySequence("Ctrl+C")
            compare(copied.signalArguments[copied.count - 1][0], "дин.\n\n$$x$$\n\nДва")
            // And back again.
            for (let i = 0; i < 4; ++i)
                keyClick(Qt.Key_Left, Qt.ShiftModifier)
            presses = 0
            while (!first.activeFocus && ++presses < 10)
                keyClick(Qt.Key_Left, Qt.ShiftModifier)
            keyClick(Qt.Key_Left, Qt.ShiftModifier)
            compare(answer.selectedText(), "дин")
            // Without Shift the caret goes on and nothing is selected.
            keyClick(Qt.Key_Down)
            keyClick(Qt.Key_Down)
            compare(answer.selectedText(), "")
            verify(!first.activeFocus)
        }

        // Formulas, diagrams and images are selected whole, wherever on them it begins or passes.
        function test_aDragThatBeginsOnAFormulaADiagramOrAnImage_data() {
            return [{ tag: "formula", source: "$$x^2$$" }, { tag: "diagram", source: "```mermaid\nflowchart TD\n A --> B\n```" },
                { tag: "image", source: "![Кот](file:///a.png)" }]
        }

        function test_aDragThatBeginsOnAFormulaADiagramOrAnImage(data) {
            answer.text = "Один.\n\n" + data.source + "\n\nДва."
            tryVerify(() => part(1).height > 10) // a diagram's source comes when the drawing does not
            const at = (item, share) => item.mapToItem(root, 0, item.height * share).y
            for (const share of [0.1, 0.9]) {
                answer.deselect()
                mousePress(root, 20, at(part(1), share))
                mouseMove(root, 24, at(part(1), share), 0, Qt.LeftButton)
                compare(answer.selectedText(), "") // a click may tremble
                mouseMove(root, 60, at(part(1), 0.5), 0, Qt.LeftButton)
                compare(answer.selectedText(), data.source)
                mouseMove(root, 400, at(part(2), 0.5), 0, Qt.LeftButton)
                wait(0)
                compare(answer.selectedText(), data.source + "\n\nДва.")
                mouseMove(root, 0, at(part(0), 0.5), 0, Qt.LeftButton)
                wait(0)
                compare(answer.selectedText(), "Один.\n\n" + data.source)
                verify(part(1).isSelected)
                mouseMove(root, 60, at(part(1), 0.5), 0, Qt.LeftButton)
                wait(0)
                compare(answer.selectedText(), data.source)
                mouseRelease(root, 60, at(part(1), 0.5))
                copied.clear()
                keySequence("Ctrl+C")
                compare(copied.count, 1)
                compare(copied.signalArguments[0][0], data.source)
            }
            mouseClick(root, 20, at(part(1), 0.5))
            compare(answer.selectedText(), "")
            // And by the keyboard, from there on.
            keyClick(Qt.Key_Down, Qt.ShiftModifier)
            compare(answer.selectedText(), data.source)
            keyClick(Qt.Key_Down, Qt.ShiftModifier)
            for (let i = 0; i < 2; ++i)
                keyClick(Qt.Key_Right, Qt.ShiftModifier)
            compare(answer.selectedText(), data.source + "\n\nДв")
        }

        function test_theKeyboardSelectsWhatStandsAtTheEnds() {
            answer.text = "$$x$$\n\nДва\n\n$$y$$"
            wait(0)
            part(1).takeCaretAt(3)
            keyClick(Qt.Key_Left, Qt.ShiftModifier)
            keyClick(Qt.Key_Right, Qt.ShiftModifier)
            keyClick(Qt.Key_Right, Qt.ShiftModifier)
            compare(answer.selectedText(), "$$y$$")
            keyClick(Qt.Key_Left, Qt.ShiftModifier)
            keyClick(Qt.Key_Left, Qt.ShiftModifier)
            compare(answer.selectedText(), "а")
            for (let i = 0; i < 3; ++i)
                keyClick(Qt.Key_Left, Qt.ShiftModifier)
            compare(answer.selectedText(), "$$x$$\n\nДва")
            // Without Shift nothing is selected and the caret passes over a formula.
            keyClick(Qt.Key_Right)
            compare(answer.selectedText(), "")
            verify(part(1).activeFocus)
        }

        function test_allOfAPartComesBeforeAllOfTheAnswer() {
            for (const [index, own] of [[1, "a = 1\nb = 2"], [3, "А\tБ\n1\t2"]]) {
                answer.deselect()
                part(index).takeCaret()
                keySequence("Ctrl+A")
                compare(answer.selectedText().trim(), own)
                copied.clear()
                keySequence("Ctrl+C")
                compare(copied.signalArguments[0][0].trim(), own)
                keySequence("Ctrl+A")
                compare(answer.selectedText(), answer.plainText())
                keySequence("Ctrl+C")
                compare(copied.signalArguments[1][0], answer.plainText())
            }
            // A text is divided where the reader sees nothing.
            for (const takes of [() => part(2).takeCaret(), () => part(2).takeFocus()]) {
                answer.deselect()
                takes()
                keySequence("Ctrl+A")
                compare(answer.selectedText(), answer.plainText())
            }
        }

        function test_allIsSelectedAndFormulasAreTex() {
            answer.selectAll()
            compare(answer.selectedText(), answer.plainText())
            verify(answer.plainText().indexOf("$x^2$") > 0)
            compare(answer.markdown(), text)
        }

        function test_sourcesOpenOnlyWebPages() {
            answer.text = "Слово [[2]](https://www.example.org/b) и [[1]](http://example.com/a)."
            wait(0)
            const footer = findChild(answer, "citationFooter")
            verify(footer.visible)
            const chip = findChild(footer, "citationChip")
            compare(chip.domain, "example.com")
            compare(chip.Accessible.role, Accessible.Link)
            verify(chip.enabled)
            verify(answer.implicitHeight >= footer.y + footer.height)
            opener.opened = []
            mouseClick(chip)
            chip.forceActiveFocus()
            keyClick(Qt.Key_Space)
            compare(opener.opened, ["http://example.com/a", "http://example.com/a"])
            for (const address of ["file:///etc/passwd", "javascript:alert(1)", "ftp://example.com/a", "mailto:a@example.com", "http:"]) {
                chip.url = address
                verify(!chip.enabled, address)
                chip.clicked()
            }
            compare(opener.opened.length, 3) // a letter can be written, but it is no source
            compare(opener.opened[2], "mailto:a@example.com")
            answer.text = "Без источников"
            verify(!footer.visible)
        }

        // An image that is not shown larger here opens where images are shown, if it is one of the web.
        function test_onlyPagesAndLettersOpenAtAll() {
            opener.opened = []
            for (const address of ["https://example.com/a.png", "MAILTO:a@example.com", "mailto:a@example.com?attach=/etc/passwd",
                "file:///a.png", "javascript:alert(1)", "//example.com", "https:///a", " https://example.com", "ftp://example.com"])
                answer.showImage(address)
            compare(opener.opened, ["https://example.com/a.png", "mailto:a@example.com"])
        }

        function test_aNewSizeOfTextAndColoursAreTakenOver() {
            const before = part(0).height
            Theme.textSize = 20
            wait(0)
            verify(part(0).height > before * 1.3, part(0).height)
            Theme.textSize = 13
            wait(0)
            compare(part(0).height, before)
        }
    }
}
