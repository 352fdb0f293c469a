import QtQuick
import QtTest
import Korvi.Views

Item {
    id: root

    height: 400
    width: 500

    readonly property string longLine: "let text = \"" + "слово ".repeat(30) + "\""

    Flickable {
        id: page

        anchors.fill: parent
        contentHeight: 2000
        contentWidth: width

        CodeBlockView {
            id: view

            code: ""
            width: 500
        }
        CodeBlockView {
            id: whole

            code: view.code
            language: view.language
            width: 500
            y: 1000
        }
    }
    Flickable {
        id: list

        property string code

        height: 400
        visible: false
        width: 500

        VirtualColumn {
            id: rows

            flickable: list
            model: ListModel {
                ListElement { name: "one" }
            }
            width: 500

            delegate: CodeBlockView {
                objectName: "longBlock"
                code: list.code
                language: "python"
            }
        }
    }
    SignalSpy {
        id: copied

        signalName: "copyWanted"
        target: view
    }

    TestCase {
        name: "CodeBlock"
        when: windowShown

        function init() {
            failOnWarning(/./)
            Theme.reducedMotion = true
            Theme.scheme = "light"
            Theme.textSize = 13
            list.visible = false
            page.contentY = 0
            view.isOpen = false
            view.wraps = false
            view.language = "python"
            view.code = ""
            view.deselect()
            wait(0) // what showed it is gone
            copied.clear()
        }

        function part() {
            return findChild(view, "codePart")
        }

        // The Flickable inside, which scrolls sideways.
        function area() {
            let item = part()
            while (item.contentX === undefined)
                item = item.parent
            return item
        }

        function test_codeIsCopiedAsItCame() {
            view.code = "a\r\n\tb  \n"
            const button = findChild(view, "copyCodeButton")
            mouseClick(button)
            compare(copied.signalArguments[0][0], "a\r\n\tb  \n")
            compare(button.text, "Скопировано")
            tryCompare(button, "text", "Копировать")
        }

        function test_linesAreOfOneHeight() {
            for (const size of [11, 13, 20]) {
                Theme.textSize = size
                view.code = "один\nдва\n\n三\n"
                tryCompare(part(), "height", 5 * Theme.leading(Theme.fontBody))
            }
            Theme.textSize = 13
        }

        function test_longLinesScrollOrWrap() {
            view.code = root.longLine + "\nx"
            const flickable = area()
            verify(flickable.contentWidth > flickable.width)
            wait(20) // the button finds its place
            const height = view.implicitHeight
            mouseClick(findChild(view, "wrapButton"))
            verify(view.wraps)
            compare(flickable.contentWidth, flickable.width)
            verify(view.implicitHeight > height)
            mouseClick(findChild(view, "wrapButton"))
            compare(view.implicitHeight, height)
        }

        function test_wheel_data() {
            return [
                { tag: "up and down", x: 0, y: -120, modifiers: Qt.NoModifier, sideways: false },
                { tag: "mostly down", x: -30, y: -120, modifiers: Qt.NoModifier, sideways: false },
                { tag: "sideways", x: -120, y: 0, modifiers: Qt.NoModifier, sideways: true },
                { tag: "with Shift", x: 0, y: -120, modifiers: Qt.ShiftModifier, sideways: true },
            ]
        }

        function test_wheel(data) {
            view.code = (root.longLine + "\n").repeat(20)
            const flickable = area()
            wait(20) // the page tells wheels apart by their time
            mouseWheel(view, 100, 100, data.x, data.y, Qt.NoButton, data.modifiers)
            if (data.sideways) {
                verify(flickable.contentX > 0)
                compare(page.contentY, 0)
            } else {
                tryVerify(() => page.contentY > 0)
                compare(flickable.contentX, 0)
            }
            flickable.contentX = 0
        }

        function test_wheelOverShortCodeIsNotTaken() {
            view.code = "x\n".repeat(20)
            wait(20)
            mouseWheel(view, 100, 100, 0, -120)
            tryVerify(() => page.contentY > 0)
        }

        function test_grownCodeLooksLikeTheWhole() {
            const text = "def f(a): # 'x\n    \"\"\"два\nif 12\n\"\"\" + 'b'\nreturn 1.5\nx = \"не закрыто"
            view.isOpen = true
            for (let length = 3; length < text.length + 3; length += 3) {
                view.code = text.slice(0, length)
                wait(0)
            }
            view.isOpen = false
            wait(20)
            const grown = grabImage(view)
            view.code = ""
            wait(0)
            view.code = text
            wait(20)
            compare(grabImage(view).equals(grown), true)
            Theme.scheme = "dark"
            wait(20)
            view.language = "swift"
            view.language = "python"
            const dark = grabImage(view)
            view.code = ""
            wait(0)
            view.code = text
            wait(20)
            compare(grabImage(view).equals(dark), true)
            compare(dark.equals(grown), false)
            Theme.scheme = "light"
        }

        function test_aLineThatMayGoOnHasNoColoursYet() {
            view.isOpen = true
            view.code = "return 1\nreturn 2"
            const colourful = line => {
                wait(20)
                const image = grabImage(root)
                const place = part().mapToItem(root, 0, line * Theme.leading(Theme.fontBody))
                for (let y = place.y; y < place.y + Theme.leading(Theme.fontBody); ++y) {
                    for (let x = place.x; x < place.x + 40; ++x) {
                        const channels = [image.red(x, y), image.green(x, y), image.blue(x, y)]
                        if (Math.max(...channels) - Math.min(...channels) > 60)
                            return true
                    }
                }
                return false
            }
            verify(colourful(0))
            verify(!colourful(1))
            view.isOpen = false
            verify(colourful(1))
        }

        function test_selectionRunsThroughAllParts() {
            view.code = Array.from({ length: 600 }, (_, i) => "строка " + i).join("\n")
            for (const position of [0, 5, 4100, 5000, view.length]) {
                const place = view.positionToRectangle(position)
                compare(view.positionAt(place.x, place.y + place.height / 2), position)
            }
            view.select(3, 5000)
            compare(view.selectedText, view.code.slice(3, 5000))
            view.code += "\nещё"
            compare(view.selectedText, view.code.slice(3, 5000))
            part().forceActiveFocus()
            keyClick(Qt.Key_C, Qt.ControlModifier)
            compare(copied.signalArguments[0][0], view.code.slice(3, 5000))
        }

        function test_caretGoesThroughAllParts() {
            view.code = Array.from({ length: 600 }, (_, i) => "строка " + i).join("\n")
            const border = view.code.indexOf("\n", 4000)
            view.takeCaretAt(border)
            compare(view.cursorPosition, border)
            keyClick(Qt.Key_Right)
            compare(view.cursorPosition, border + 1)
            keyClick(Qt.Key_Up)
            verify(view.cursorPosition < border + 1)
            verify(view.hasCaret)
        }

        function test_pointerSelects() {
            view.code = "первая строка\nвторая строка"
            const from = view.positionToRectangle(2)
            const to = view.positionToRectangle(20)
            mousePress(view, from.x + 1, from.y + 5)
            mouseMove(view, from.x + 20, from.y + 5, 20, Qt.LeftButton) // so that the page does not take it for a flick
            mouseMove(view, from.x + 40, from.y + 5, 20, Qt.LeftButton)
            mouseMove(view, to.x + 1, to.y + 5, 20, Qt.LeftButton)
            mouseRelease(view, to.x + 1, to.y + 5)
            tryCompare(view, "selectedText", view.code.slice(2, 20))
            mouseClick(view, from.x, from.y + 5)
            tryCompare(view, "selectedText", "")
        }

        function test_longCodeIsLaidOutWhereItIsSeen() {
            list.visible = true
            rows.forceLayout()
            wait(0)
            const block = findChild(list, "longBlock")
            verify(block) // with nothing in it yet
            list.code = Array.from({ length: 10000 }, (_, i) => "value" + i + " = " + i).join("\n")
            rows.forceLayout()
            wait(0)
            fuzzyCompare(block.implicitHeight, 10000 * Theme.leading(Theme.fontBody), 200)
            function live() {
                let count = 0
                const visit = item => {
                    if (item.objectName === "codePart" && item.visible)
                        ++count
                    for (let i = 0; i < item.children.length; ++i)
                        visit(item.children[i])
                }
                visit(block)
                return count
            }
            verify(live() > 0 && live() < 4, live() + " parts")
            const height = block.implicitHeight
            rows.scrollTo(100000)
            rows.forceLayout()
            wait(0)
            verify(live() > 0 && live() < 4, live() + " parts")
            compare(block.implicitHeight, height) // the estimate was exact
            list.visible = false
        }

        function luminance(color) {
            const part = value => value <= 0.03928 ? value / 12.92 : Math.pow((value + 0.055) / 1.055, 2.4)
            return 0.2126 * part(color.r) + 0.7152 * part(color.g) + 0.0722 * part(color.b)
        }

        function test_coloursCanBeRead() {
            for (const scheme of ["light", "dark"]) {
                Theme.scheme = scheme
                const ground = luminance(Theme.code)
                for (const token of ["codeKeyword", "codeString", "codeNumber", "codeComment", "codeType"]) {
                    const ink = luminance(Theme[token])
                    verify((Math.max(ink, ground) + 0.05) / (Math.min(ink, ground) + 0.05) >= 4.5, scheme + " " + token)
                }
            }
            Theme.scheme = "light"
        }
    }
}
