import QtQuick
import QtTest
import Korvi.Views

Item {
    id: root

    property string draft
    property int sent: 0
    property int stopped: 0
    property string lastQuestion
    property var wanted: []
    property int pasted: 0
    property bool takesPaste: false

    function addFile(name: string, error: string): void {
        waiting.append({ attachmentId: name, filename: name, sizeText: "1,2 МБ", category: "document", source: "",
            isUploading: false, progress: 0, error: error })
    }

    function removeFile(id: string): void {
        for (let row = 0; row < waiting.count; ++row) {
            if (waiting.get(row).attachmentId === id)
                return waiting.remove(row)
        }
    }

    height: 600
    width: 600

    // Those items under `item` with that name, in their order.
    function all(item: Item, name: string): var {
        let found = item.objectName === name ? [item] : []
        for (let i = 0; i < item.children.length; ++i)
            found = found.concat(all(item.children[i], name))
        return found
    }

    ListModel {
        id: waiting
    }
    Composer {
        id: composer

        canSend: root.draft.trim().length > 0
        generating: false
        text: root.draft
        width: parent.width

        onEdited: text => root.draft = text
        attachments: waiting
        onAttachmentErrorDismissed: attachmentError = ""
        onAttachmentRemoved: id => root.removeFile(id)
        onEditingImageCancelled: editImage = ""
        onFilesWanted: filter => root.wanted.push(filter)
        paste: () => {
            ++root.pasted
            return root.takesPaste
        }
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
            composer.editImage = ""
            composer.generating = false
            composer.mode = "none"
            root.draft = ""
            root.lastQuestion = "Вопрос"
            root.sent = 0
            root.stopped = 0
            root.wanted = []
            root.pasted = 0
            root.takesPaste = false
            waiting.clear()
            composer.attachmentError = ""
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
            composer.editImage = "file:///nowhere.png"
            compare(placeholder.text, "Опишите изменения...")
            composer.editImage = ""
            chip.forceActiveFocus(Qt.TabFocusReason)
            keyClick(Qt.Key_Delete)
            compare(composer.mode, "none")
            compare(placeholder.text, "Спросите что угодно")
        }

        function test_chipsAreClosedByTheirCross() {
            composer.mode = "study"
            composer.editImage = "file:///nowhere.png"
            waitForRendering(composer)
            mouseClick(findChild(findChild(composer, "modeChip"), "chipClose"))
            compare(composer.mode, "none")
            mouseClick(findChild(findChild(composer, "editImageChip"), "chipClose"))
            compare(composer.editImage, "")
        }

        function chips() {
            return root.all(composer, "attachmentChip")
        }

        function test_filesAreReachedAndRemovedByKeyboard() {
            const low = composer.height
            for (const name of ["a.pdf", "b.pdf", "c.pdf"])
                root.addFile(name, "")
            waitForRendering(composer)
            verify(composer.height > low)
            compare(chips().length, 3)
            verify(chips()[0].Accessible.name.includes("1,2 МБ"))
            keyClick(Qt.Key_Backtab)
            verify(chips()[0].activeFocus)
            keyClick(Qt.Key_Left) // no further
            keyClick(Qt.Key_Right)
            verify(chips()[1].activeFocus)
            keyClick(Qt.Key_Tab) // one stop for all of them
            verify(edit.activeFocus)
            keyClick(Qt.Key_Backtab)
            verify(chips()[1].activeFocus)
            keyClick(Qt.Key_Delete)
            tryVerify(() => chips().length === 2 && chips()[1].text === "c.pdf" && chips()[1].activeFocus)
            keyClick(Qt.Key_Backspace)
            tryVerify(() => chips().length === 1 && chips()[0].activeFocus)
            keyClick(Qt.Key_Delete)
            tryVerify(() => edit.activeFocus)
            compare(composer.height, low)
        }

        function test_filesAreRemovedByTheirCrossAndTypingGoesOn() {
            root.addFile("a.pdf", "")
            root.addFile("b.pdf", "")
            waitForRendering(composer)
            keyClick("a")
            mouseClick(findChild(chips()[0], "chipClose"))
            compare(chips().length, 1)
            compare(chips()[0].text, "b.pdf")
            verify(edit.activeFocus)
            compare(root.draft, "a")
        }

        function test_whatIsWrongIsSaidInItsPlace() {
            root.addFile("Очень длинное название отчёта за прошлый год, третья редакция.pdf", "Нет места на диске")
            composer.attachmentError = "exe не поддерживается"
            waitForRendering(composer)
            const strip = findChild(composer, "validationError")
            verify(strip.visible)
            compare(strip.text, "exe не поддерживается")
            const chip = chips()[0]
            compare(chip.hint, "Нет места на диске")
            verify(findChild(chip, "chipName").truncated)
            verify(chip.width <= Theme.attachmentWidth)
            strip.dismissed()
            compare(composer.attachmentError, "")
            verify(!strip.visible)
        }

        function test_manyFilesScrollAndLeaveRoomForTheText() {
            for (let i = 0; i < 40; ++i)
                root.addFile("файл-%1.pdf".arg(i), "")
            composer.maximumHeight = 300
            waitForRendering(composer)
            verify(composer.height <= 300)
            keyClick(Qt.Key_Backtab)
            for (let i = 0; i < 39; ++i)
                keyClick(Qt.Key_Right)
            const last = chips()[39]
            verify(last.activeFocus)
            const top = last.mapToItem(composer, 0, 0).y
            verify(top >= 0 && top + last.height <= composer.height - composer.barHeight)
            verify(edit.parent.parent.height >= edit.contentHeight)
            composer.maximumHeight = Infinity
        }

        function test_theMenuAsksForFiles() {
            findChild(composer, "attachButton").forceActiveFocus(Qt.TabFocusReason)
            keyClick(Qt.Key_Space)
            keyClick(Qt.Key_Return)
            tryVerify(() => root.wanted.length === 1)
            findChild(composer, "attachButton").forceActiveFocus(Qt.TabFocusReason)
            keyClick(Qt.Key_Space)
            keyClick(Qt.Key_Down)
            keyClick(Qt.Key_Return)
            tryVerify(() => root.wanted.length === 2)
            compare(root.wanted, [0, 1])
        }

        function test_pastingIsTheTextsUnlessItIsTaken() {
            root.takesPaste = true
            keyClick(Qt.Key_V, Qt.ControlModifier)
            compare(root.pasted, 1)
            compare(root.draft, "")
            root.takesPaste = false
            keyClick("a")
            keyClick(Qt.Key_A, Qt.ControlModifier)
            keyClick(Qt.Key_C, Qt.ControlModifier)
            keyClick(Qt.Key_End)
            keyClick(Qt.Key_V, Qt.ControlModifier)
            compare(root.draft, "aa")
        }
    }
}
