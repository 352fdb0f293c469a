import QtQuick
import QtTest
import Korvi.Views

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
            verify(sidebar.activeFocus)
            layout.width = 900 // nothing stays covered when the window grows
            verify(content.enabled)
            tryVerify(() => drawerX() === 0)
            verify(sidebar.activeFocus)
            layout.width = 500 // nor does the keyboard stay in what folds away
            verify(content.activeFocus)
        }
    }
}
