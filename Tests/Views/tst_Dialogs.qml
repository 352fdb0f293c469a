import QtQuick
import QtTest
import Korvi.Views

FocusScope {
    id: root

    property var heard: []

    focus: true
    height: 600
    width: 520

    InputField {
        id: behind

        objectName: "behind"
        placeholderText: "Под диалогом"
    }
    InputField {
        objectName: "other"
        placeholderText: "И это"
        y: 60
    }
    OnDemand {
        id: question

        source: "qrc:/qt-project.org/imports/Korvi/Views/ConfirmDialog.qml"
    }
    OnDemand {
        id: form

        source: "qrc:/qt-project.org/imports/Korvi/Views/FieldDialog.qml"
    }
    Connections {
        function onAccepted() { root.heard.push("accepted") }
        function onRejected() { root.heard.push("rejected") }

        target: question.item
    }
    Connections {
        function onSubmitted(text) { root.heard.push(text) }
        function onRejected() { root.heard.push("rejected") }

        target: form.item
    }

    TestCase {
        name: "Dialogs"
        when: windowShown

        function init() {
            failOnWarning(/./)
            root.heard = []
            behind.text = ""
            behind.forceActiveFocus()
        }

        function ask(properties) {
            question.open(Object.assign({ title: "Удалить чат?", message: "Его нельзя вернуть.", acceptText: "Удалить" },
                properties))
            verify(question.item)
        }

        function test_keysOfAQuestion_data() {
            const esc = Qt.Key_Escape, enter = Qt.Key_Return, tab = Qt.Key_Tab, left = Qt.Key_Left, right = Qt.Key_Right
            return [
                { tag: "return acts", properties: {}, keys: [enter], heard: "accepted" },
                { tag: "enter acts", properties: {}, keys: [Qt.Key_Enter], heard: "accepted" },
                { tag: "esc goes back", properties: {}, keys: [esc], heard: "rejected" },
                { tag: "return is the way back when something is destroyed", properties: { destructive: true },
                    keys: [enter], heard: "rejected" },
                { tag: "one step to the action", properties: { destructive: true }, keys: [right, enter], heard: "accepted" },
                { tag: "and back", properties: { destructive: true }, keys: [right, left, enter], heard: "rejected" },
                { tag: "tab goes round", properties: { destructive: true }, keys: [tab, tab, tab, enter], heard: "accepted" },
                { tag: "space presses", properties: { destructive: true }, keys: [tab, Qt.Key_Space], heard: "accepted" },
                { tag: "one button", properties: { rejectText: "" }, keys: [tab, enter], heard: "accepted" },
            ]
        }

        function test_keysOfAQuestion(data) {
            ask(data.properties)
            for (const key of data.keys)
                keyClick(key)
            compare(root.heard, [data.heard])
            tryVerify(() => question.item === null)
            keyClick("a") // the keyboard is where it was
            compare(behind.text, "a")
        }

        function test_whatIsBehindHearsNothing() {
            ask({})
            for (const key of ["x", Qt.Key_Tab, "y", Qt.Key_Backtab, "z"])
                keyClick(key)
            mouseClick(root, 5, 5)
            compare(behind.text, "")
            verify(!behind.activeFocus)
            verify(question.item.visible)
            keyClick(Qt.Key_Escape)
            tryVerify(() => question.item === null)
        }

        function test_whatReachesForTheKeyboardGetsItAfterwards() {
            const other = findChild(root, "other")
            ask({})
            keyClick(Qt.Key_Left)
            other.forceActiveFocus()
            verify(findChild(question.item.contentItem, "rejectButton").activeFocus) // where it was
            keyClick(Qt.Key_Return)
            compare(root.heard, ["rejected"])
            tryVerify(() => question.item === null)
            verify(other.activeFocus)
        }

        function test_aSheetThatFollowsAnotherHasTheKeyboardAtOnce() {
            ask({})
            keyClick(Qt.Key_Return)
            form.open({ title: "Переименовать чат", label: "Название", acceptText: "Сохранить" })
            keyClick("a") // while the first one leaves
            tryVerify(() => question.item === null)
            keyClick("b")
            compare(behind.text, "")
            keyClick(Qt.Key_Return)
            compare(root.heard, ["accepted", "ab"])
            tryVerify(() => form.item === null)
            verify(behind.activeFocus)
        }

        function test_aSheetThatCannotBeDismissed() {
            ask({ dismissible: false })
            keyClick(Qt.Key_Escape)
            verify(question.item.visible)
            compare(root.heard, [])
            keyClick(Qt.Key_Return)
            tryVerify(() => question.item === null)
        }

        function test_aLineOfText() {
            form.open({ title: "Переименовать чат", label: "Название", text: "Старое", acceptText: "Сохранить" })
            keyClick(Qt.Key_Backspace) // all of it is selected
            keyClick(Qt.Key_Space)
            keyClick(Qt.Key_Return) // blank: nothing happens
            verify(form.item)
            compare(root.heard, [])
            verify(!findChild(form.item.contentItem, "acceptButton").enabled)
            for (const letter of "New ")
                keyClick(letter)
            keyClick(Qt.Key_Return)
            compare(root.heard, ["New"])
            tryVerify(() => form.item === null)
            verify(behind.activeFocus)
        }

        function test_aNarrowWindowWithLargeText() {
            Theme.textSize = 20
            ask({ title: "Очистить кеш?", message: "Кешированные данные и изображения будут удалены.",
                acceptText: "Очистить", destructive: true })
            const dialog = question.item
            verify(dialog.width <= root.width)
            for (const name of ["acceptButton", "rejectButton"]) {
                const button = findChild(dialog.contentItem, name)
                const x = button.mapToItem(root, 0, 0).x
                verify(x >= 0 && x + button.width <= root.width, name)
            }
            keyClick(Qt.Key_Escape)
            Theme.textSize = 13
            tryVerify(() => question.item === null)
        }
    }
}
