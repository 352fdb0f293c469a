import QtQuick
import QtTest
import Korvi.Views

Item {
    id: root

    height: 400
    width: 500

    MarkdownTableView {
        id: view

        table: markdown.table("")
        width: 500
    }
    Flickable {
        id: list

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

            delegate: MarkdownTableView {
                objectName: "longTable"
                table: markdown.table("|a|b|\n|-|-|\n" + "|один|два|\n".repeat(5000))
            }
        }
    }
    FontMetrics {
        id: mono

        font.family: Theme.monoFamily
    }
    SignalSpy {
        id: copied

        signalName: "copyWanted"
        target: view
    }

    TestCase {
        name: "Table"
        when: windowShown

        function init() {
            failOnWarning(/./)
            Theme.reducedMotion = true
            list.visible = false
            view.width = 500
            view.deselect()
            copied.clear()
        }

        // A text item of a megabyte stands the window for a second.
        function test_aHugeCellShowsItsBeginningAndIsCopiedWhole() {
            const words = "слово ".repeat(5000).trim()
            view.table = markdown.table("|a|b|\n|-|-|\n|1|" + words + "|\n|2" + "|x".repeat(9000) + "|\n")
            wait(0)
            const texts = rowItems(view).map(row => row.cells.map(cell => cell.text))
            compare(texts[1][1].length, 5001)
            verify(words.startsWith(texts[1][1].slice(0, -1)))
            verify(texts[2][63].length <= 5001)
            view.select(1, 3)
            verify(view.selectedText.trim() === "1\t" + words + "\n2" + "\tx".repeat(9000))
            view.table = markdown.table("")
        }

        // Items with cells, in the order of the rows.
        function rowItems(item) {
            const found = []
            const visit = inner => {
                if (inner.cells !== undefined && inner.visible)
                    found.push(inner)
                for (let i = 0; i < inner.children.length; ++i)
                    visit(inner.children[i])
            }
            visit(item)
            return found.sort((a, b) => a.index - b.index)
        }

        function test_copiedAsTabSeparatedText() {
            view.table = markdown.table("| Имя | Цена |\n|---|--:|\n| **Чай** | $5$ |\n| Кофе | 7 | лишнее |\n| Один |")
            const all = "Имя\tЦена\nЧай\t5\nКофе\t7\tлишнее\nОдин"
            mouseClick(findChild(view, "copyTableButton"))
            compare(copied.signalArguments[0][0].trim(), all)
            view.forceActiveFocus()
            keyClick(Qt.Key_C, Qt.ControlModifier)
            compare(copied.signalArguments[1][0].trim(), all)
            const rows = rowItems(view)
            mousePress(view, 50, rows[1].y + 2)
            mouseMove(view, 60, rows[2].y + rows[2].height - 2, -1, Qt.LeftButton)
            mouseRelease(view, 60, rows[2].y + rows[2].height - 2)
            keyClick(Qt.Key_C, Qt.ControlModifier)
            compare(copied.signalArguments[2][0].trim(), "Чай\t5\nКофе\t7\tлишнее")
            keyClick(Qt.Key_A, Qt.ControlModifier)
            compare(view.selectedText.trim(), all)
        }

        function test_everyCellIsShown() {
            view.table = markdown.table("|a|b|\n|-|-|\n|1|\n|1|2|3|4|\n|`x<y`|**z**|")
            compare(rowItems(view).map(row => row.cells.length), [2, 1, 4, 2])
            compare(rowItems(view)[3].cells.map(cell => cell.isRich), [true, true])
            verify(rowItems(view)[3].cells[0].text.includes("x&lt;y"))
            compare(rowItems(view)[2].widths.length, 4)
        }

        function test_aReaderHearsWordsAndNotTheirMarkup() {
            view.table = markdown.table("|**Имя**|\n|-|\n|`x<y` и *z*|")
            compare(rowItems(view).map(row => row.Accessible.name), ["Имя", "x<y и z"])
        }

        // As among words: a pixel smaller, and no heavier in the header.
        function test_codeIsSmallerThanTheWordsAroundIt() {
            const wide = "ш".repeat(20)
            const text = row => {
                const visit = item => item.implicitWidth > 100 && item.textFormat !== undefined ? item
                    : Array.from(item.children).reduce((found, child) => found ?? visit(child), null)
                return visit(rowItems(view)[row])
            }
            view.table = markdown.table("|`" + wide + "`|\n|-|\n|`" + wide + "`|")
            for (const size of [11, 13, 20]) {
                Theme.textSize = size
                mono.font.pixelSize = Math.round(size * 12 / 13)
                fuzzyCompare(text(0).implicitWidth, mono.advanceWidth(wide), 2)
                wait(20)
                const image = grabImage(view)
                const [header, cell] = [0, 1].map(row => text(row).mapToItem(view, 0, 0))
                const differ = []
                for (let y = 0; y < text(0).height; ++y)
                    for (let x = 0; x < 40; ++x)
                        if (!Qt.colorEqual(image.pixel(header.x + x, header.y + y), image.pixel(cell.x + x, cell.y + y)))
                            differ.push([x, y])
                compare(differ, [])
                view.width = 10 // the column is as wide as its widest word
                fuzzyCompare(rowItems(view)[0].widths[0], text(0).implicitWidth, Theme.gap4 + 3)
                view.width = 500
            }
            Theme.textSize = 13
        }

        function test_finishedRowsStayWhileOthersCome() {
            let text = "|Имя|Что|\n|-|-|\n|один|"
            view.table = markdown.table(text)
            text += "раз|\n"
            view.table = markdown.table(text)
            const before = rowItems(view)
            compare(before[1].cells.map(cell => cell.text), ["один", "раз"])
            for (let i = 0; i < 10; ++i) {
                text += "|ещё строка " + i + "|и что-то длинное, что шире всего остального|\n"
                view.table = markdown.table(text)
            }
            const after = rowItems(view)
            compare(after.length, 12)
            compare(after[0], before[0])
            compare(after[1], before[1])
            for (let i = 1; i < after.length; ++i)
                compare(after[i].y, after[i - 1].y + after[i - 1].height)
        }

        function test_widthsFitWhereTheyCan() {
            view.table = markdown.table("|Имя|Описание|\n|-|-|\n|a|" + "слово ".repeat(40) + "|")
            const total = () => rowItems(view)[0].widths.reduce((sum, width) => sum + width, 0)
            verify(total() <= 500)
            verify(rowItems(view)[1].height > rowItems(view)[0].height) // wrapped
            view.table = markdown.table("|Имя|Год|\n|-|-|\n|a|b|")
            verify(total() > 490 && total() <= 500)
            view.width = 300
            verify(total() > 290 && total() <= 300)
        }

        function test_wideTablesScrollSideways() {
            view.table = markdown.table("|" + "Длинноеслово|".repeat(12) + "\n|" + "-|".repeat(12) + "\n|" + "ячейка|".repeat(12))
            let area = rowItems(view)[0]
            while (area.contentX === undefined)
                area = area.parent
            verify(area.contentWidth > 500)
            view.forceActiveFocus()
            keyClick(Qt.Key_Right)
            verify(area.contentX > 0)
            keyClick(Qt.Key_Left)
            compare(area.contentX, 0)
            mouseWheel(view, 50, 50, 0, -120, Qt.NoButton, Qt.ShiftModifier)
            verify(area.contentX > 0)
        }

        function test_onlyRowsInViewExist() {
            list.visible = true
            rows.forceLayout()
            wait(0)
            const table = findChild(list, "longTable")
            const count = rowItems(table).length
            verify(count > 5 && count < 40, count + " rows")
            const height = table.implicitHeight
            rows.scrollTo(height / 2)
            rows.forceLayout()
            compare(table.implicitHeight, height) // the estimate was exact
            list.visible = false
        }
    }
}
