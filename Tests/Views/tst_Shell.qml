import QtQuick
import QtTest
import Korvi.Views
import "qrc:/qt-project.org/imports/Korvi/Views/RelativeTime.js" as RelativeTime

Item {
    id: root

    height: 600
    width: 1000

    SidebarLayout {
        id: layout

        height: parent.height
        width: parent.width

        sidebar: Sidebar {
            activeChatId: -1
            anchors.fill: parent
            chats: ListModel {}
            displayName: "Имя"
            focus: true
            initials: "И"
        }

        Item {
            id: content

            anchors.fill: parent
            focus: true
        }
    }

    TestCase {
        name: "Shell"
        when: windowShown

        function init() {
            failOnWarning(/./)
        }

        readonly property var sidebar: findChild(layout, "sidebar")

        function drawerX() {
            return sidebar.mapToItem(root, 0, 0).x
        }

        function test_sidebarFoldsBelow720() {
            for (const [width, folded] of [[1000, false], [720, false], [719, true], [420, true], [720, false]]) {
                layout.width = width
                tryVerify(() => sidebar.visible !== folded, 1000, width + " px")
                compare(content.width, folded ? width : width - sidebar.width)
            }
        }

        function test_drawerTakesTheKeyboardAndGivesItBack() {
            layout.width = 500
            tryVerify(() => !sidebar.visible)
            layout.toggle()
            tryVerify(() => drawerX() === 0)
            verify(sidebar.activeFocus)
            verify(!content.enabled)
            mouseClick(root, 450, 300) // beside the drawer
            tryVerify(() => !sidebar.visible)
            verify(content.activeFocus)
            layout.toggle()
            tryVerify(() => drawerX() === 0)
            layout.width = 900 // nothing stays covered when the window grows
            verify(content.enabled)
            tryVerify(() => drawerX() === 0)
        }

        function test_ageOfAChat_data() {
            return [
                { then: "2026-03-10T11:59:30", text: "сейчас" },
                { then: "2026-03-10T12:00:30", text: "сейчас" }, // the service's clock is ahead
                { then: "2026-03-10T11:55:00", text: "5 мин" },
                { then: "2026-03-10T09:30:00", text: "2 ч" },
                { then: "2026-03-09T23:50:00", text: "вчера" },
                { then: "2026-03-07T08:00:00", text: "3 дн." },
                { then: "2026-03-03T08:00:00", text: "3 мар" },
                { then: "2025-12-31T08:00:00", text: "31 дек 2025" },
                { then: "нет", text: "" },
            ].map(row => Object.assign({ tag: row.then }, row))
        }

        function test_ageOfAChat(data) {
            compare(RelativeTime.describe(data.then, new Date("2026-03-10T12:00:00")), data.text)
        }
    }
}
