import QtQuick
import QtTest
import Korvi.Views

Item {
    id: root

    property string draft
    property int sent: 0
    property int stopped: 0
    property string lastQuestion

    height: 600
    width: 600

    Composer {
        id: composer

        canSend: root.draft.trim().length > 0
        generating: false
        text: root.draft
        width: parent.width

        onEdited: text => root.draft = text
        onEditingImageCancelled: editingImage = false
        onModeChosen: chosen => mode = chosen
        onRecallRequested: recall(root.lastQuestion)
        onSend: {
            ++root.sent
            root.draft = ""
        }
        onStop: ++root.stopped
    }

    TestCase {
        name: "Composer"
        when: windowShown

        readonly property var edit: findChild(composer, "composer")
        readonly property var sendButton: findChild(composer, "sendButton")
        readonly property var stopButton: findChild(composer, "stopButton")

        function init() {
            composer.editingImage = false
            composer.generating = false
            composer.mode = "none"
            root.draft = ""
            root.lastQuestion = "Вопрос"
            root.sent = 0
            root.stopped = 0
            failOnWarning(/./)
            composer.takeFocus()
        }

        function test_returnSendsAndShiftReturnBreaksTheLine() {
            keyClick(Qt.Key_Return)
            compare(root.sent, 0) // nothing to send
            keyClick("a")
            keyClick(Qt.Key_Return, Qt.ShiftModifier)
            keyClick("b")
            compare(root.draft, "a\nb")
            compare(root.sent, 0)
            keyClick(Qt.Key_Return)
            compare(root.sent, 1)
            compare(edit.text, "")
        }

        function test_whileAnAnswerComesTypingGoesOnAndStopTakesTheButton() {
            keyClick("a")
            composer.generating = true
            verify(!sendButton.visible)
            verify(stopButton.visible)
            keyClick("b")
            keyClick(Qt.Key_Return)
            compare(root.sent, 0)
            compare(root.draft, "ab")
            mouseClick(stopButton)
            compare(root.stopped, 1)
            composer.generating = false
            mouseClick(sendButton)
            compare(root.sent, 1)
        }

        function test_aDraftFromOutsideIsShownAndEdited() {
            root.draft = "Ещё раз"
            compare(edit.text, "Ещё раз")
            keyClick("!")
            compare(root.draft, "Ещё раз!")
            root.draft = ""
            compare(edit.text, "")
        }

        function test_growsWithTheTextUpToALimit() {
            const low = composer.height
            root.draft = "1\n2\n3\n4"
            tryVerify(() => composer.height > low)
            root.draft = "1\n2\n3\n4\n5\n6\n7\n8\n9"
            waitForRendering(composer)
            const high = composer.height
            root.draft += "\n10\n11\n12"
            waitForRendering(composer)
            compare(composer.height, high)
            verify(high < low * 4)
        }

        function test_tabLeaves() {
            keyClick("a")
            keyClick(Qt.Key_Tab)
            verify(!edit.activeFocus)
            composer.takeFocus()
            verify(edit.activeFocus)
            compare(root.draft, "a")
        }

        function test_theLastQuestionComesBackAndGoesAgain_data() {
            const up = Qt.Key_Up, down = Qt.Key_Down, esc = Qt.Key_Escape
            return [
                { tag: "up", keys: [up], text: "Вопрос" },
                { tag: "down takes it away", keys: [up, down], text: "" },
                { tag: "so does esc", keys: [up, esc], text: "" },
                { tag: "and it comes again", keys: [up, esc, up], text: "Вопрос" },
                { tag: "edited, it is a draft", keys: [up, "a", esc, down], text: "Вопросa" },
                { tag: "a draft is not replaced", keys: ["a", up], text: "a" },
                { tag: "a draft is not taken away", keys: ["a", esc, down], text: "a" },
            ]
        }

        function test_theLastQuestionComesBackAndGoesAgain(data) {
            for (const key of data.keys)
                keyClick(key)
            compare(edit.text, data.text)
        }

        function test_withoutAQuestionUpDoesNothing() {
            root.lastQuestion = ""
            keyClick(Qt.Key_Up)
            compare(edit.text, "")
        }

        function test_modes_data() {
            return [
                { mode: "createImage", placeholder: "Опишите изображение", chip: "Изображение" },
                { mode: "thinking", placeholder: "Задайте сложный вопрос", chip: "Размышление" },
                { mode: "deepResearch", placeholder: "Получить детальный отчёт", chip: "Анализ" },
                { mode: "webSearch", placeholder: "Найти в интернете", chip: "Поиск" },
                { mode: "study", placeholder: "Чему хотите научиться?", chip: "Обучение" },
            ].map((row, index) => Object.assign({ tag: row.mode, downs: index }, row))
        }

        function test_modes(data) {
            const button = findChild(composer, "modeButton")
            const chip = findChild(composer, "modeChip")
            const placeholder = findChild(composer, "composerPlaceholder")
            button.forceActiveFocus(Qt.TabFocusReason)
            keyClick(Qt.Key_Space)
            for (let i = 0; i < data.downs; ++i)
                keyClick(Qt.Key_Down)
            keyClick(Qt.Key_Return)
            tryCompare(composer, "mode", data.mode)
            compare(placeholder.text, data.placeholder)
            verify(!button.visible && chip.visible)
            compare(chip.text, data.chip)
            verify(edit.activeFocus) // and on with the text
            composer.editingImage = true
            compare(placeholder.text, "Опишите изменения...")
            composer.editingImage = false
            chip.forceActiveFocus(Qt.TabFocusReason)
            keyClick(Qt.Key_Delete)
            compare(composer.mode, "none")
            compare(placeholder.text, "Спросите что угодно")
        }

        function test_chipsAreClosedByTheirCross() {
            composer.mode = "study"
            composer.editingImage = true
            waitForRendering(composer)
            mouseClick(findChild(findChild(composer, "modeChip"), "chipClose"))
            compare(composer.mode, "none")
            mouseClick(findChild(findChild(composer, "editImageChip"), "chipClose"))
            verify(!composer.editingImage)
        }
    }
}
