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

    TestCase {
        name: "MessageList"
        when: windowShown

        property int nextId: 1
        readonly property string paragraph: "Сортировка слиянием делит список пополам и сливает половины. "

        function add(isUser, text) {
            messages.append({ messageId: nextId++, isUser: isUser, text: text, thinking: isUser ? "" : "Ход мысли.",
                isStreaming: !isUser })
        }

        function grow(times) {
            const last = messages.count - 1
            for (let i = 0; i < times; ++i)
                messages.setProperty(last, "text", messages.get(last).text + paragraph + "\n")
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
    }
}
