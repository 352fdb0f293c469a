import QtQuick
import QtTest
import Korvi.Views

FocusScope {
    id: root

    property var chosen: []
    property string selected: "sonnet"

    focus: true
    height: 600
    width: 800

    ListModel {
        id: models

        ListElement { modelId: "auto"; name: "Авто"; description: "Лучшая"; iconName: "sparkles"; provider: "Авто"; isSelected: false }
        ListElement { modelId: "sonnet"; name: "Sonnet"; description: "Продвинутая"; iconName: "doc.text"; provider: "Claude"; isSelected: true }
        ListElement { modelId: "opus"; name: "Opus"; description: "Самая"; iconName: "doc.text"; provider: "Claude"; isSelected: false }
        ListElement { modelId: "pro"; name: "Pro"; description: "Для задач"; iconName: "cpu.fill"; provider: "DeepSeek"; isSelected: false }
    }
    ConversationHeader {
        id: header

        lined: false
        modelName: "Sonnet"
        models: models
        sidebarFolded: false
        status: "Connected"
        title: "План отпуска"
        width: parent.width

        onModelChosen: modelId => {
            root.chosen.push(modelId)
            choosingModel = false
        }
        onModelsClosed: choosingModel = false
        onModelsRequested: choosingModel = !choosingModel
    }

    TestCase {
        name: "Header"
        when: windowShown

        readonly property var button: findChild(header, "modelButton")

        function init() {
            failOnWarning(/./)
            root.chosen = []
            header.sidebarFolded = false
            header.title = "План отпуска"
            button.forceActiveFocus(Qt.TabFocusReason)
        }

        function test_theModelIsChosenByKeys_data() {
            const up = Qt.Key_Up, down = Qt.Key_Down, enter = Qt.Key_Return
            return [
                { tag: "begins at the one in force", keys: [enter], chosen: ["sonnet"] },
                { tag: "down", keys: [down, enter], chosen: ["opus"] },
                { tag: "down past the group", keys: [down, down, Qt.Key_Enter], chosen: ["pro"] },
                { tag: "up", keys: [up, Qt.Key_Space], chosen: ["auto"] },
                { tag: "end", keys: [Qt.Key_End, enter], chosen: ["pro"] },
                { tag: "home", keys: [Qt.Key_Home, enter], chosen: ["auto"] },
                { tag: "away", keys: [down, Qt.Key_Escape], chosen: [] },
            ]
        }

        function test_theModelIsChosenByKeys(data) {
            keyClick(Qt.Key_Space)
            verify(header.choosingModel)
            for (const key of data.keys)
                keyClick(key)
            compare(root.chosen, data.chosen)
            verify(!header.choosingModel)
            verify(button.activeFocus)
        }

        function test_aSecondClickClosesThePicker() {
            mouseClick(button)
            verify(header.choosingModel)
            mouseClick(button)
            tryVerify(() => !header.choosingModel)
        }

        function test_theTitleIsShownWhereNoSidebarShowsIt() {
            const title = findChild(header, "conversationTitle")
            const menu = findChild(header, "conversationMenuButton")
            verify(!title.visible)
            verify(menu.visible)
            header.sidebarFolded = true
            verify(title.visible)
            header.title = ""
            verify(!menu.visible) // a new chat has nothing to rename
        }
    }
}
