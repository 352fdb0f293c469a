import QtQuick
import QtTest
import Korvi.Views

Item {
    id: root

    height: 400
    width: 500

    ListModel {
        id: messages
    }
    MessageList {
        id: list

        anchors.fill: parent
        columnWidth: 460
        messages: messages
    }
    SignalSpy {
        id: deletion

        signalName: "deletionWanted"
        target: list
    }
    SignalSpy {
        id: retry

        signalName: "retryWanted"
        target: list
    }
    TextParts {
        id: parts
    }
    TextParts {
        id: whole
    }
    TextEdit {
        id: pasted

        visible: false // or the pasted text takes what is pressed
    }
    Component {
        id: another

        MessageList {
            anchors.fill: parent
            columnWidth: 460
            messages: list.messages
        }
    }

    TestCase {
        name: "MessageList"
        when: windowShown

        property int nextId: 1
        readonly property string paragraph: "Сортировка слиянием делит список пополам и сливает половины. "

        function add(isUser, text) {
            messages.append({ messageId: nextId, key: nextId++, isUser: isUser, text: text, question: isUser ? text : "",
                content: isUser ? "" : text, thinking: isUser ? "" : "Ход мысли.", isStreaming: !isUser })
        }

        function answer(row, text) {
            messages.setProperty(row, "text", text)
            messages.setProperty(row, "content", text)
        }

        function grow(times) {
            const last = messages.count - 1
            for (let i = 0; i < times; ++i)
                answer(last, messages.get(last).text + paragraph + "\n\n")
            settled()
        }

        // Rows get their heights and the list answers to them in the next turns of the event loop.
        function settled() {
            for (let i = 0; i < 4; ++i)
                wait(0)
            list.column.forceLayout()
        }

        function init() {
            failOnWarning(/./)
            Theme.reducedMotion = true
            list.canRetry = false
            messages.clear()
            settled()
            for (let i = 0; i < 12; ++i) {
                add(true, "Вопрос " + i)
                add(false, paragraph.repeat(1 + i % 4 * 3))
            }
            list.showEnd()
            settled()
        }

        // Where on the screen that row is.
        function place(row) {
            return Math.round(list.column.rowPosition(row) - list.column.position)
        }

        function visibleRow() {
            return Math.floor((list.column.firstVisibleRow + list.column.lastVisibleRow) / 2)
        }

        function test_openedAtTheEndAndHeldThereWhileRowsGrow() {
            compare(Math.round(list.distanceToEnd), 0)
            for (let i = 0; i < 5; ++i) {
                grow(2)
                compare(Math.round(list.distanceToEnd), 0)
            }
            root.height = 300
            settled()
            compare(Math.round(list.distanceToEnd), 0)
            root.height = 400
        }

        function test_readerIsLeftAlone_data() {
            return [
                { tag: "a little above the end", up: 40 },
                { tag: "far above the end", up: 900 },
            ]
        }

        function test_readerIsLeftAlone(data) {
            list.column.scrollBy(-data.up)
            settled()
            verify(!list.following)
            const row = visibleRow()
            const before = place(row)
            grow(10)
            compare(place(row), before)
            add(true, "Ещё вопрос")
            add(false, "Ответ")
            grow(3)
            compare(place(row), before)

            list.showEnd()
            settled()
            compare(Math.round(list.distanceToEnd), 0)
            grow(3)
            compare(Math.round(list.distanceToEnd), 0)
        }

        function test_wheelLetsGoAndTakesUpAgain() {
            mouseWheel(list, 100, 100, 0, 240)
            tryVerify(() => !list.moving)
            verify(list.distanceToEnd > 2)
            verify(!list.following)
            while (list.distanceToEnd > 1) {
                mouseWheel(list, 100, 100, 0, -480)
                tryVerify(() => !list.moving)
            }
            verify(list.following)
            grow(3)
            compare(Math.round(list.distanceToEnd), 0)
        }

        function test_newTurnStandsAtTheTopAndTheAnswerGrowsUnderIt() {
            add(true, "Новый вопрос")
            add(false, "")
            list.showLastTurn()
            settled()
            const question = messages.count - 2
            const top = place(question)
            verify(top >= 0 && top < 40, top)
            grow(2)
            compare(place(question), top)
            grow(2)
            compare(place(question), top)
            grow(40) // more than a screen: now the end is what is read
            compare(Math.round(list.distanceToEnd), 0)
            verify(list.column.itemAt(messages.count - 1).height > list.height)
        }

        function test_unfoldingTheReasoningDoesNotMoveIt() {
            const row = messages.count - 1
            list.column.scrollTo(list.column.rowPosition(row) - 50)
            settled()
            const before = place(row)
            const folded = list.column.itemAt(row).height
            const pill = findChild(list.column.itemAt(row), "thinkingPill")
            mouseClick(pill)
            tryVerify(() => list.column.itemAt(row).height > folded)
            compare(place(row), before)
            pill.forceActiveFocus(Qt.TabFocusReason)
            keyClick(Qt.Key_Space)
            tryVerify(() => list.column.itemAt(row).height === folded)
            compare(place(row), before)
        }

        // Although the first line of text is below it and would be what is read.
        function test_whatIsPressedStaysInItsPlace() {
            grow(20)
            const row = messages.count - 1
            list.column.scrollTo(list.column.rowPosition(row) + 6)
            settled()
            const pill = findChild(list.column.itemAt(row), "thinkingPill")
            const text = findChild(list.column.itemAt(row), "answerText").itemAt(0)
            const before = pill.mapToItem(list, 0, 0).y
            const below = text.mapToItem(list, 0, 0).y
            verify(before < 0)
            mouseClick(pill, 20, pill.height - 6)
            tryVerify(() => text.mapToItem(list, 0, 0).y > below)
            settled()
            compare(pill.mapToItem(list, 0, 0).y, before)
        }

        function focusLast() {
            list.focusRow(messages.count - 1)
            settled()
            const row = list.column.itemAt(messages.count - 1)
            verify(row.activeFocus)
            return row
        }

        function clipboard() {
            pasted.clear()
            pasted.paste()
            return pasted.text
        }

        // The items of the open menu that can be chosen.
        function offered() {
            const menu = findChild(list, "messageMenu") ?? findChild(root.Window.contentItem, "messageMenu")
            const texts = []
            for (let i = 0; i < menu.count; ++i) {
                if (menu.itemAt(i).visible)
                    texts.push(menu.itemAt(i).text)
            }
            return texts
        }

        function test_menuByKeyboard_data() {
            return [
                { tag: "Menu", key: Qt.Key_Menu, modifiers: Qt.NoModifier },
                { tag: "Shift+F10", key: Qt.Key_F10, modifiers: Qt.ShiftModifier },
            ]
        }

        function test_menuByKeyboard(data) {
            list.canRetry = true
            focusLast()
            keyClick(data.key, data.modifiers)
            const menu = findChild(list, "messageMenu")
            tryVerify(() => menu.opened)
            compare(offered(), ["Копировать", "Копировать как Markdown", "Повторить", "Удалить"])
            keyClick(Qt.Key_Escape)
            tryVerify(() => !menu.visible)
            verify(list.column.itemAt(messages.count - 1).activeFocus, "the keyboard is back on the row")

            list.focusRow(messages.count - 3)
            keyClick(data.key, data.modifiers)
            tryVerify(() => menu.opened)
            compare(offered(), ["Копировать", "Копировать как Markdown", "Удалить"])
            menu.close()
        }

        // The first time too, when the menu is made and the keyboard is elsewhere.
        function test_menuByRightClickTakesTheKeys() {
            pasted.forceActiveFocus()
            const other = createTemporaryObject(another, root)
            tryVerify(() => other.column.itemAt(other.count - 1)?.height > 0)
            for (let i = 0; i < 2; ++i) {
                mouseClick(other, 4, other.height - 60, Qt.RightButton) // beside the words
                const menu = findChild(other, "messageMenu")
                tryVerify(() => menu.opened)
                keyClick(Qt.Key_Down)
                compare(menu.itemAt(menu.currentIndex).objectName, "copyMarkdownItem")
                keyClick(Qt.Key_Escape)
                tryVerify(() => !menu.visible)
                verify(pasted.activeFocus)
            }
        }

        function test_menuActs() {
            list.canRetry = true
            const last = messages.count - 1
            const menu = () => findChild(list, "messageMenu")
            const choose = name => {
                mouseClick(list.column.itemAt(last), 200, 10, Qt.RightButton)
                tryVerify(() => menu().opened)
                findChild(menu().contentItem, name).clicked()
                tryVerify(() => !menu().visible)
            }
            deletion.clear()
            retry.clear()
            answer(last, "# Слияние\n\nСлово **жирно**.\n- раз\n- `два`")
            settled()
            choose("copyItem")
            compare(clipboard(), "Слияние\n\nСлово жирно.\n\n• раз\n• два")
            choose("copyMarkdownItem")
            compare(clipboard(), messages.get(last).text)
            choose("retryItem")
            compare(retry.count, 1)
            choose("deleteItem")
            compare(deletion.count, 1)
            compare(deletion.signalArguments[0][0], messages.get(last).messageId)
        }

        function test_menuOffersWhatItWasOpenedOn() {
            messages.clear()
            add(true, "Вопрос")
            add(false, "Слова.\n\n```\nкод\n```\n\n|А|Б|\n|-|-|\n|1|2|")
            list.column.forceLayout()
            const column = findChild(list.column.itemAt(1), "answerText")
            const texts = [["text", undefined], ["code", "Копировать код"], ["table", "Копировать таблицу"]]
            for (let part = 0; part < texts.length; ++part) {
                const item = column.itemAt(part)
                mouseClick(item, 20, item.height - 8, Qt.RightButton)
                const menu = findChild(list, "messageMenu")
                tryVerify(() => menu.opened)
                compare(offered().find(text => text === texts[part][1]), texts[part][1])
                compare(findChild(menu.contentItem, "copySourceItem").visible, texts[part][1] !== undefined)
                verify(!findChild(menu.contentItem, "enlargeItem").visible)
                menu.close()
                tryVerify(() => !menu.visible)
            }
        }

        function test_keyboardGoesToTheNextMessageAfterADeletion() {
            list.deletionWanted.connect(remove)
            list.focusRow(4)
            settled()
            const next = messages.get(5).messageId
            keyClick(Qt.Key_Menu)
            const menu = findChild(list, "messageMenu")
            tryVerify(() => menu.opened)
            keyClick(Qt.Key_Up) // round to the last, which deletes
            if (menu.itemAt(menu.currentIndex).objectName !== "deleteItem")
                menu.currentIndex = menu.count - 1
            keyClick(Qt.Key_Return)
            tryVerify(() => list.column.focusedRow === 4)
            compare(list.column.itemAt(4).messageId, next)
            list.deletionWanted.disconnect(remove)
        }

        function remove(messageId) {
            for (let i = 0; i < messages.count; ++i) {
                if (messages.get(i).messageId === messageId)
                    messages.remove(i)
            }
        }

        function test_selectionSurvivesStreamingAndIsCopied() {
            const row = focusLast()
            const shown = findChild(row, "textPart")
            shown.select(5, 25)
            const selected = shown.selectedText
            grow(5)
            compare(shown.selectedText, selected)
            shown.select(3, shown.length)
            const toTheEnd = shown.selectedText
            grow(2)
            compare(shown.selectedText, toTheEnd)
            shown.forceActiveFocus()
            keySequence("Ctrl+C")
            compare(clipboard(), toTheEnd.replace(/\n/g, "\n\n").trim())

            keyClick(Qt.Key_Menu)
            const menu = findChild(list, "messageMenu")
            tryVerify(() => menu.opened)
            compare(offered(), ["Копировать", "Копировать как Markdown", "Копировать выделенное", "Удалить"])
            compare(menu.itemAt(menu.currentIndex).objectName, "copySelectionItem")
            compare(shown.selectedText, toTheEnd, "the menu leaves the selection alone")
            keyClick(Qt.Key_Escape)
            tryVerify(() => !menu.visible)
        }

        function test_caretSelectsByKeyboard() {
            const row = focusLast()
            keySequence("Ctrl+C")
            compare(clipboard(), messages.get(messages.count - 1).text.trim())
            keyClick(Qt.Key_Return)
            const shown = findChild(row, "textPart")
            verify(shown.activeFocus)
            verify(shown.cursorVisible)
            keyClick(Qt.Key_Right)
            keyClick(Qt.Key_Right, Qt.ShiftModifier)
            keyClick(Qt.Key_Right, Qt.ShiftModifier)
            compare(shown.selectedText, paragraph.slice(1, 3))
            keyClick(Qt.Key_Down, Qt.ShiftModifier)
            keySequence("Ctrl+C")
            compare(clipboard(), shown.selectedText)
            keyClick(Qt.Key_Escape)
            verify(row.activeFocus)
            verify(!shown.cursorVisible)
            keySequence("Ctrl+A")
            compare(shown.selectedText.length, shown.length)
        }

        function test_mouseSelectsAndArrowsStillScroll() {
            const row = list.column.itemAt(messages.count - 1)
            const shown = findChild(row, "textPart")
            mouseDrag(shown, 5, shown.height - 30, 150, 0, Qt.LeftButton, Qt.NoModifier, 50)
            verify(shown.selectedText.length > 5, shown.selectedText)
            verify(shown.activeFocus)
            const before = list.column.position
            keyClick(Qt.Key_PageUp)
            verify(list.column.position < before)
        }

        function test_keysGoThroughAllMessages() {
            focusLast()
            keyClick(Qt.Key_Home)
            settled()
            compare(list.column.position, 0)
            compare(list.column.focusedRow, 0)
            let presses = 0
            let last = 0
            while (list.column.focusedRow < messages.count - 1 && ++presses < 500) {
                keyClick(Qt.Key_Down)
                settled()
                const row = list.column.focusedRow
                verify(row === last || row === last + 1, row + " after " + last)
                const top = place(row)
                verify(top < list.height && top + list.column.heightAt(row) > 0, "row " + row + " is in view at " + top)
                last = row
            }
            compare(last, messages.count - 1)
            keyClick(Qt.Key_PageUp)
            keyClick(Qt.Key_PageUp)
            settled()
            verify(list.column.focusedRow >= list.column.firstVisibleRow)
            verify(list.column.focusedRow <= list.column.lastVisibleRow)
            keyClick(Qt.Key_End)
            settled()
            compare(Math.round(list.distanceToEnd), 0)
            compare(list.column.focusedRow, messages.count - 1)
        }

        function test_aNarrowerColumnKeepsEveryTextInItsRow() {
            list.column.positionAtRow(16) // a long answer is ready above the view
            settled()
            verify(list.column.itemAt(15))
            list.columnWidth = 200
            settled()
            let looked = 0
            for (let row = 0; row < list.count; ++row) {
                const item = list.column.itemAt(row)
                const part = item ? findChild(item, "textPart") : null
                if (!part)
                    continue
                ++looked
                verify(part.mapToItem(item, 0, part.height).y <= item.height, "row " + row)
            }
            verify(looked > 1)
            list.columnWidth = 460
        }

        function test_tabBringsButtonsOnTheScreen() {
            grow(40)
            list.focusRow(list.count - 1)
            list.showEnd()
            settled()
            keyClick(Qt.Key_Tab)
            settled()
            const pill = findChild(list.column.itemAt(list.count - 1), "thinkingPill")
            verify(pill.activeFocus)
            const y = pill.mapToItem(list, 0, 0).y
            verify(y >= 0 && y + pill.height <= list.height, "at " + y)
        }

        function test_textSizeKeepsWhatIsRead() {
            answer(9, paragraph.repeat(60))
            list.column.positionAtRow(9)
            settled()
            list.column.scrollBy(300)
            settled()
            // The first whole line below the padding: its baseline, some four fifths down.
            const shown = findChild(list.column.itemAt(9), "textPart")
            const top = shown.mapFromItem(list, 0, list.column.topPadding).y
            const cut = shown.positionToRectangle(shown.positionAt(0, top))
            const read = shown.positionAt(0, cut.y + cut.height * 1.5)
            const baseline = () => {
                const line = shown.positionToRectangle(read)
                return shown.mapToItem(list, 0, line.y + line.height * 0.8).y
            }
            const before = baseline()
            for (const size of [20, 11, 13]) {
                Theme.textSize = size
                settled()
                fuzzyCompare(baseline(), before, 2, "size " + size)
            }
        }

        function test_selectionGoesOverTheBordersOfParts() {
            const last = messages.count - 1
            answer(last, (paragraph.repeat(4).trim() + "\n\n").repeat(40))
            settled()
            const text = messages.get(last).text
            const column = findChild(list.column.itemAt(last), "answerText")
            // The border between the last two parts, in view.
            const lower = column.itemAt(column.model.count - 1)
            list.column.scrollBy(-200)
            settled()
            list.column.scrollTo(list.column.rowPosition(last) + lower.mapToItem(list.column.itemAt(last), 0, 0).y - 200)
            settled()
            const y = lower.mapToItem(list, 0, 0).y
            mousePress(list, 60, y - 50)
            for (let at = y - 50; at <= y + 50; at += 10)
                mouseMove(list, 160, at, 0, Qt.LeftButton)
            settled()
            mouseRelease(list, 160, y + 50)
            settled()
            const selected = column.selectedText()
            verify(selected.indexOf("\n") > 0, selected)
            verify(text.indexOf(selected) >= 0, "as it stands in the text: " + selected)
            const shown = column.itemAt(column.model.count - 2).selectedText + "\n" + lower.selectedText
            compare(shown.replace(/\n/g, "\n\n"), selected)
            keySequence("Ctrl+C")
            compare(clipboard(), selected)

            list.focusRow(last)
            keySequence("Ctrl+A")
            keySequence("Ctrl+C")
            compare(clipboard(), text.trim())
            list.focusRow(last - 1)
            compare(column.selectedText(), "")
        }

        // A block of code begins with no line at all; above it stands a row that is in view.
        function test_partsThatAreStillEmptyAreNothingToSee() {
            const last = messages.count - 1
            const text = paragraph + "\n\n```py\n"
            for (const grown of [text, text + "a = 1", text + "a = 1\n```\n\n| А |", text + "```\n\n| А |\n|---|"]) {
                answer(last, grown)
                settled()
                compare(Math.round(list.distanceToEnd), 0)
            }
            verify(list.column.itemAt(last).height > 60)
        }

        // 256 KB, and as much again that comes while it is read.
        function test_answerOfAnyLengthCostsWhatIsSeen() {
            const last = messages.count - 1
            const many = (paragraph.repeat(4) + "\n\n").repeat(550)
            answer(last, many)
            settled()
            const shown = findChild(list.column.itemAt(last), "answerText")
            verify(shown.height > 20000, shown.height)
            compare(Math.round(list.distanceToEnd), 0)
            verify(shown.liveParts() <= 4, shown.liveParts() + " parts")

            for (let i = 0; i < 60; ++i) {
                const part = shown.itemAt(shown.partAt(list.column.position + list.height / 2
                    - list.column.rowPosition(last)))
                const before = part.mapToItem(list, 0, 0).y
                list.column.scrollBy(-300)
                list.column.forceLayout()
                verify(Math.abs(part.mapToItem(list, 0, 0).y - before - 300) <= 1, "screen " + i)
                verify(shown.liveParts() <= 4, shown.liveParts() + " parts")
            }
            list.showEnd()
            settled()
            list.column.scrollBy(-700)
            settled()
            const part = shown.itemAt(shown.partAt(list.column.position + 100 - list.column.rowPosition(last)))
            const before = part.mapToItem(list, 0, 0).y
            answer(last, many + many)
            settled()
            compare(part.mapToItem(list, 0, 0).y, before)
            verify(!list.following)
        }

        function test_partsAreTheText() {
            const texts = ["", "слово", "\n".repeat(9000), (paragraph.repeat(3) + "\n\n").repeat(90), "б".repeat(40000),
                "слово ".repeat(9000), "😀".repeat(20000)]
            for (const text of texts) {
                parts.text = ""
                for (let to = 0; to < text.length; to += 977)
                    parts.text = text.slice(0, to)
                parts.text = text
                let joined = ""
                for (let i = 0; i < parts.count; ++i) {
                    const part = parts.data(parts.index(i, 0), partRole)
                    verify(part.length <= 16001, part.length)
                    joined += part
                    const border = text[joined.length]
                    if (i + 1 < parts.count && (border === "\n" || border === " "))
                        joined += border
                }
                verify(joined === text, text.slice(0, 20))
                compare(parts.count > 1, text.length > 4000)
                whole.text = text // grown or set at once, the same
                compare(whole.count, parts.count)
            }
        }

        readonly property int partRole: Qt.UserRole + 1

        function test_screenReaderHearsWhoSpeaks() {
            compare(list.column.itemAt(messages.count - 1).Accessible.name.indexOf("Ответ: Сортировка"), 0)
            verify(list.column.itemAt(messages.count - 1).Accessible.name.length < 300)
        }

        function test_actionsUnderAnAnswer() {
            list.canRetry = true
            const row = list.column.itemAt(messages.count - 1)
            const actions = findChild(row, "answerActions")
            verify(!actions.enabled, "not while it is written")
            const height = row.height
            messages.setProperty(messages.count - 1, "isStreaming", false)
            settled()
            verify(actions.enabled)
            compare(row.height, height)
            retry.clear()
            mouseClick(findChild(row, "retryButton"))
            compare(retry.count, 1)
            findChild(row, "copyButton").forceActiveFocus(Qt.TabFocusReason)
            compare(list.column.focusedRow, messages.count - 1)
            keyClick(Qt.Key_Space)
            compare(clipboard(), messages.get(messages.count - 1).text.trim())
        }
    }
}
