import QtQuick
import QtTest
import Korvi.Views

FocusScope {
    id: root

    property var heard: []

    focus: true
    height: 500
    width: 700

    ListModel {
        id: chats
    }
    Sidebar {
        id: sidebar

        activeChatId: -1
        chats: chats
        displayName: "Имя Фамилия"
        focus: true
        height: parent.height
        initials: "ИФ"
        menuChatId: actions.menuChatId
        width: 260

        onChatChosen: chatId => root.heard.push("open " + chatId)
        onDeleteRequested: (chatId, name) => actions.askDeletion(chatId, name)
        onLogout: root.heard.push("logout")
        onMenuRequested: (chatId, name, isFavorite, item, x, y) => actions.openMenu(chatId, name, isFavorite, item, x, y)
        onRenameRequested: (chatId, name) => actions.askName(chatId, name)
        onSettingsRequested: root.heard.push("settings")
    }
    ChatActions {
        id: actions

        onDeleted: chatId => root.heard.push("delete " + chatId)
        onFavoriteToggled: chatId => root.heard.push("toggle " + chatId)
        onRenamed: (chatId, name) => root.heard.push("rename " + chatId + " " + name)
    }

    TestCase {
        name: "Sidebar"
        when: windowShown

        readonly property var list: findChild(sidebar, "chatList")
        readonly property var search: findChild(sidebar, "chatSearch")
        readonly property var notice: findChild(sidebar, "chatListNotice")

        function fill(count) {
            const words = ["План", "Ёлка", "Сортировка слиянием", "Рецепт", "Письмо"]
            const rows = []
            for (let i = 0; i < count; ++i)
                rows.push({ chatId: i, name: words[i % words.length] + " " + i, isFavorite: i < 2,
                    updatedAt: "2026-03-10T09:30:00Z", isGenerating: false })
            chats.append(rows)
        }

        function init() {
            failOnWarning(/./)
            chats.clear()
            search.clear()
            sidebar.activeChatId = -1
            sidebar.loading = false
            sidebar.online = true
            list.currentIndex = -1
            fill(40)
            list.forceLayout()
            list.positionViewAtBeginning()
            root.heard = []
            search.forceActiveFocus()
        }

        function cleanup() {
            tryVerify(() => !actions.asking)
        }

        // Latin keys carry no Cyrillic: the text comes as from an input method.
        function type(text) {
            search.insert(search.length, text)
        }

        function keys(list) {
            for (const key of list)
                keyClick(key)
        }

        function names() {
            const found = []
            for (let i = 0; i < list.rows; ++i)
                found.push(list.model.nameAt(i))
            return found
        }

        function rowOn(screenRow) {
            list.forceLayout()
            return list.itemAtIndex(screenRow)
        }

        function test_searchFindsAndEscShowsAllAgain() {
            type("елка 1")
            compare(names(), ["Ёлка 1", "Ёлка 11", "Ёлка 16", "Ёлка 21", "Ёлка 31"])
            verify(rowOn(1).marks.length > 0)
            type("1")
            compare(names(), ["Ёлка 11"])
            keyClick(Qt.Key_Return)
            compare(root.heard, ["open 11"])
            type("нет")
            verify(notice.visible)
            compare(notice.kind, "nothingFound")
            keyClick(Qt.Key_Escape)
            compare(list.rows, 40)
            verify(search.activeFocus)
        }

        function test_whatWasFoundIsNotElided() {
            const name = "Очень длинное название чата, в конце которого стоит искомое слово мотокультиватор и ещё немного"
            chats.setProperty(5, "name", name)
            type("мотокульт")
            compare(names(), [name])
            const shown = findChild(rowOn(0), "chatName")
            const place = name.indexOf("мотокульт")
            verify(shown.cut > 0 && shown.cut < place, "cut " + shown.cut)
            verify(shown.text.startsWith("…"))
            compare(shown.Accessible.name, name)
            search.clear()
            type("Очень")
            compare(findChild(rowOn(0), "chatName").cut, 0)
        }

        function headings() {
            list.forceLayout()
            const texts = []
            const items = list.contentItem.children
            for (let i = 0; i < items.length; ++i) {
                const item = items[i]
                if (item.visible && item.objectName === "sectionHeading")
                    texts.push(item.text)
            }
            return texts.sort()
        }

        function test_headingsFollowWhatIsShown() {
            compare(headings(), ["Избранное", "Чаты"])
            type("елка 11")
            tryVerify(() => headings().join() === "Чаты")
            search.clear()
            tryVerify(() => headings().join() === "Избранное,Чаты")
            type("план 0")
            tryVerify(() => headings().includes("Избранное"))
        }

        function test_fromTheSearchIntoTheListAndBack() {
            keys([Qt.Key_Down, Qt.Key_Down, Qt.Key_Return])
            compare(root.heard, ["open 1"])
            keys([Qt.Key_End, Qt.Key_Return, Qt.Key_Home, Qt.Key_Enter])
            compare(root.heard.slice(1), ["open 39", "open 0"])
            keyClick(Qt.Key_PageDown)
            verify(list.currentIndex > 3 && list.currentIndex < 20)
            keys([Qt.Key_Home, Qt.Key_Up])
            verify(search.activeFocus)
            keyClick(Qt.Key_Down)
            keyClick("4") // a letter in the list is the beginning of a search
            verify(search.activeFocus)
            compare(search.text, "4")
        }

        function test_keysOfAChat_data() {
            const enter = Qt.Key_Return, right = Qt.Key_Right
            return [
                { tag: "delete asks first", keys: [Qt.Key_Delete, enter], heard: [] },
                { tag: "delete, confirmed", keys: [Qt.Key_Delete, right, enter], heard: ["delete 1"] },
                { tag: "delete, thought better of", keys: [Qt.Key_Delete, Qt.Key_Escape], heard: [] },
                { tag: "rename", keys: [Qt.Key_F2, "N", enter], heard: ["rename 1 N"] },
                { tag: "rename to the same", keys: [Qt.Key_F2, enter], heard: [] },
                { tag: "menu, favourite", keys: [Qt.Key_Menu, enter], heard: ["toggle 1"] },
                { tag: "menu, delete", keys: [Qt.Key_Menu, Qt.Key_Down, Qt.Key_Down, enter, right, enter], heard: ["delete 1"] },
                { tag: "menu, rename", keys: [Qt.Key_Menu, Qt.Key_Down, enter, "N", enter], heard: ["rename 1 N"] },
                { tag: "menu, closed", keys: [Qt.Key_Menu, Qt.Key_Escape], heard: [] },
            ]
        }

        function test_keysOfAChat(data) {
            keys([Qt.Key_Down, Qt.Key_Down])
            for (const key of data.keys) {
                keyClick(key)
                wait(0) // what follows a menu comes in the next turn
            }
            compare(root.heard, data.heard)
            tryVerify(() => list.activeFocus)
            compare(list.currentIndex, 1)
        }

        function test_theKeyboardStaysWhenItsRowGoes_data() {
            return [
                { tag: "deleted", keys: [Qt.Key_Delete, Qt.Key_Right, Qt.Key_Return], change: () => chats.remove(1) },
                { tag: "renamed out of the search", keys: [Qt.Key_F2, "N", Qt.Key_Return],
                    change: () => chats.setProperty(1, "name", "N") },
            ]
        }

        function test_theKeyboardStaysWhenItsRowGoes(data) {
            type("елка 1")
            keyClick(Qt.Key_Down)
            keys(data.keys)
            data.change()
            list.forceLayout()
            tryVerify(() => list.activeFocus)
            keyClick(Qt.Key_Return)
            compare(root.heard[1], "open 11")
        }

        function test_shiftF10OpensTheMenuOfTheRow() {
            keyClick(Qt.Key_Down)
            keyClick(Qt.Key_F10, Qt.ShiftModifier)
            compare(actions.menuChatId, 0)
            verify(rowOn(0).menuOpen)
            keyClick(Qt.Key_Escape)
            compare(actions.menuChatId, -1)
        }

        function test_menuUnderThePointer() {
            mouseClick(rowOn(3), 100, 10, Qt.RightButton)
            compare(actions.menuChatId, 3)
            keyClick(Qt.Key_Escape)
            mouseMove(rowOn(2), 50, 10)
            tryVerify(() => findChild(rowOn(2), "chatMenuButton"))
            waitForRendering(sidebar)
            mouseClick(findChild(rowOn(2), "chatMenuButton"))
            compare(actions.menuChatId, 2)
            compare(root.heard, []) // the row itself was not opened
            keyClick(Qt.Key_Escape)
        }

        // Where on the screen the row of that chat is.
        function place(chatId) {
            list.forceLayout()
            return Math.round(list.itemAtIndex(list.model.rowOf(chatId)).y - list.contentY)
        }

        function test_aRowThatMovesLeavesTheReaderWhereHeWas() {
            list.positionViewAtIndex(25, ListView.Center)
            list.currentIndex = 24
            const before = place(25)
            list.forceActiveFocus()
            chats.move(35, 2, 1)
            compare(place(25), before)
            compare(list.model.chatIdAt(list.currentIndex), 24)
            compare(root.Window.window.activeFocusItem, list)
            chats.insert(2, { chatId: 99, name: "Новый", isFavorite: false, updatedAt: "", isGenerating: false })
            compare(place(25), before)
            chats.remove(3, 1)
            compare(place(25), before)
            compare(list.model.chatIdAt(list.currentIndex), 24)
        }

        function test_theOpenChatIsBroughtOnTheScreen() {
            sidebar.activeChatId = 39
            verify(place(39) >= 0 && place(39) < list.height)
            sidebar.activeChatId = -1
        }

        function test_aRunningAnswerIsMarked() {
            const mark = findChild(rowOn(4), "chatBusyMark")
            verify(!mark.visible)
            chats.setProperty(4, "isGenerating", true)
            verify(mark.visible)
        }

        function test_whenThereAreNoChats_data() {
            return [
                { tag: "none yet", loading: false, online: true, kind: "empty", title: "Нет чатов" },
                { tag: "on their way", loading: true, online: true, kind: "loading", title: "" },
                { tag: "no line", loading: true, online: false, kind: "offline", title: "Нет связи" },
            ]
        }

        function test_whenThereAreNoChats(data) {
            chats.clear()
            sidebar.loading = data.loading
            sidebar.online = data.online
            compare(notice.kind, data.kind)
            compare(findChild(sidebar, "chatListNoticeTitle").text, data.title)
            fill(1)
            compare(notice.kind, "")
        }

        function test_theFootLeadsToSettingsAndOut() {
            mouseClick(findChild(sidebar, "settingsButton"))
            compare(root.heard, ["settings"])
            findChild(sidebar, "profileButton").forceActiveFocus(Qt.TabFocusReason)
            keys([Qt.Key_Space, Qt.Key_Down, Qt.Key_Down, Qt.Key_Return])
            wait(0)
            compare(root.heard, ["settings", "logout"])
        }

        // Not a check: what a key costs with its rows on the screen.
        function test_timePerKey() {
            chats.clear()
            fill(2000)
            let slowest = 0, sum = 0
            const texts = ["с", "со", "сор", "сорт", "сорт ", "сорт 1", "сорт 12", "сорт 1", "сорт", "со", "", "п", "пи", "", "1", ""]
            for (const text of texts) {
                const begun = Date.now()
                search.text = text
                list.forceLayout()
                slowest = Math.max(slowest, Date.now() - begun)
                sum += Date.now() - begun
            }
            console.info("2,000 chats, the slowest of " + texts.length + " keys with its rows: " + slowest + " ms, on average "
                + Math.round(sum / texts.length) + " ms")
        }
    }
}
