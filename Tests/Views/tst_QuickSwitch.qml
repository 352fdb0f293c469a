import QtQuick
import QtTest
import Korvi.Views

FocusScope {
    id: root

    property var heard: []

    focus: true
    height: 600
    width: 900

    ListModel {
        id: chats

        ListElement { chatId: 1; name: "Сортировка слиянием"; isFavorite: true; updatedAt: "2026-01-01 00:00:00" }
        ListElement { chatId: 2; name: "План отпуска"; isFavorite: false; updatedAt: "2026-01-04 00:00:00" }
        ListElement { chatId: 3; name: "Ёлка & <b>гирлянда</b>"; isFavorite: false; updatedAt: "2026-01-03 00:00:00" }
        ListElement { chatId: 4; name: "Аэроплан"; isFavorite: false; updatedAt: "2026-01-02 00:00:00" }
    }
    TextInput {
        id: behind

        focus: true
    }
    OnDemand {
        id: palette

        source: "qrc:/qt-project.org/imports/Korvi/Views/QuickSwitch.qml"
    }
    Connections {
        function onChosen(chatId) {
            root.heard.push(chatId)
        }

        target: palette.item
    }

    TestCase {
        name: "QuickSwitch"
        when: windowShown

        property var field
        property var list

        function init() {
            failOnWarning(/./)
            root.heard = []
            behind.forceActiveFocus()
            palette.open({ chats: chats, activeChatId: 2 })
            field = findChild(palette.item.contentItem, "quickSwitchField")
            list = findChild(palette.item.contentItem, "quickSwitchList")
            verify(field.activeFocus)
        }

        function cleanup() {
            palette.close()
            tryVerify(() => !palette.item)
        }

        function test_keys_data() {
            const up = Qt.Key_Up, down = Qt.Key_Down, enter = Qt.Key_Return
            return [
                { tag: "the last one first", text: "", keys: [enter], heard: [3] },
                { tag: "down", text: "", keys: [down, enter], heard: [4] },
                { tag: "round the end", text: "", keys: [up, enter], heard: [1] },
                { tag: "by letters", text: "план", keys: [enter], heard: [2] },
                { tag: "the next by letters", text: "план", keys: [down, Qt.Key_Enter], heard: [4] },
                { tag: "by beginnings of words", text: "сс", keys: [enter], heard: [1] },
                { tag: "nothing", text: "рыба", keys: [enter], heard: [] },
                { tag: "away", text: "план", keys: [Qt.Key_Escape], heard: [] },
            ]
        }

        function test_keys(data) {
            field.text = data.text
            for (const key of data.keys)
                keyClick(key)
            compare(root.heard, data.heard)
            if (data.tag === "away") {
                tryVerify(() => !palette.item)
                verify(behind.activeFocus)
            }
        }

        function test_onlyAPointerThatMovesChooses() {
            const row = 1
            const place = list.itemAtIndex(row).mapToItem(root, 20, 10)
            cleanup()
            mouseMove(root, place.x, place.y)
            init()
            wait(0)
            compare(list.currentIndex, 0)
            mouseMove(root, place.x + 3, place.y)
            mouseMove(root, place.x + 6, place.y)
            compare(list.currentIndex, row)
            keyClick(Qt.Key_Down)
            compare(list.currentIndex, row + 1)
        }

        function test_aNameIsShownAsItIsWritten() {
            field.text = "елка"
            list.forceLayout()
            const row = list.itemAtIndex(0)
            compare(row.text, "Ёлка & <b>гирлянда</b>")
            compare(row.marks, [0, 4])
            mouseClick(row)
            compare(root.heard, [3])
        }

        function test_askedForWhileItLeavesItComesAgain() {
            const first = palette.item
            keyClick(Qt.Key_Escape)
            palette.open({ chats: chats, activeChatId: 2 })
            tryVerify(() => palette.item && palette.item !== first)
            field = findChild(palette.item.contentItem, "quickSwitchField")
            verify(field.activeFocus)
        }

        function test_nothingFoundIsSaid() {
            field.text = "рыба"
            verify(findChild(palette.item.contentItem, "quickSwitchNothing").visible)
        }
    }
}
