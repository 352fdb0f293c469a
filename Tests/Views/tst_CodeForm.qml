import QtQuick
import QtTest
import Korvi.Views

Item {
    id: root

    property var codes: []

    height: 600
    width: 600

    CodeForm {
        id: form

        anchors.fill: parent
        email: "user@example.com"

        onSubmitted: code => {
            root.codes.push(code)
            busy = true
        }
    }

    SignalSpy {
        id: changed

        signalName: "changeEmail"
        target: form
    }

    TestCase {
        name: "CodeForm"
        when: windowShown

        function init() {
            failOnWarning(/./)
            form.busy = false
            form.error = ""
            field.clear()
            root.codes = []
            form.forceActiveFocus()
        }

        readonly property var field: findChild(form, "codeField")

        function type(text) {
            for (const character of text)
                keyClick(character)
        }

        function refuse(message) {
            form.error = message
            form.busy = false
        }

        function test_fourthCharacterSubmitsOnce() {
            type("471")
            compare(root.codes, [])
            type("1")
            compare(root.codes, ["4711"])
            type("9") // held back while the code is being checked
            compare(field.text, "4711")
            compare(root.codes, ["4711"])
        }

        function test_erasingAndCorrecting() {
            type("47")
            keyClick(Qt.Key_Backspace)
            type("8")
            keyClick(Qt.Key_Left)
            keyClick(Qt.Key_Left, Qt.ShiftModifier)
            type("5") // over the selected character
            compare(field.text, "58")
            keyClick(Qt.Key_End)
            type("11")
            compare(root.codes, ["5811"])
        }

        function test_pasting_data() {
            return [
                { tag: "bare", text: "4711", codes: ["4711"] },
                { tag: "spaced, from a letter", text: " 47 11\n", codes: ["4711"] },
                { tag: "too long", text: "471199", codes: ["4711"] },
                { tag: "too short", text: "471", codes: [] },
            ]
        }

        function test_pasting(data) {
            field.insert(0, data.text)
            compare(root.codes, data.codes)
        }

        function test_refusalEmptiesTheFieldForTheNextCode() {
            type("4711")
            field.focus = false
            refuse("Неверный код. Попробуйте ещё раз.")
            compare(field.text, "")
            verify(field.activeFocus)
            compare(findChild(form, "formError").text, "Неверный код. Попробуйте ещё раз.")
            form.error = ""
            type("4711") // the same code may be tried again
            compare(root.codes, ["4711", "4711"])
        }

        function test_busyResendKeepsWhatWasTyped() {
            type("47")
            form.busy = true
            refuse("Не удалось отправить код. Проверьте email.")
            compare(field.text, "47")
        }

        function test_escGoesBackToTheAddress() {
            changed.clear()
            form.busy = true
            keyClick(Qt.Key_Escape)
            compare(changed.count, 0)
            form.busy = false
            keyClick(Qt.Key_Escape)
            compare(changed.count, 1)
        }

        function test_resendIsOfferedAfterTheCountdown() {
            const button = findChild(form, "resendButton")
            form.secondsLeft = 1
            verify(!button.visible)
            form.secondsLeft = 0
            verify(button.visible)
        }
    }
}
