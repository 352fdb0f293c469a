import QtQuick
import QtTest
import Korvi.Views

Item {
    id: root

    property var heard: []

    height: 700
    width: 600

    EmailForm {
        id: form

        anchors.fill: parent
        configuredProviders: ["Google", "VK"]
        providers: ["Google", "Яндекс", "VK"]

        onProviderCancelled: {
            root.heard.push("cancelled")
            waitingProvider = ""
        }
        onProviderChosen: provider => {
            root.heard.push(provider)
            waitingProvider = provider
        }
        onSubmitted: address => root.heard.push(address)
    }

    TestCase {
        name: "EmailForm"
        when: windowShown

        function init() {
            failOnWarning(/./)
            form.waitingProvider = ""
            form.busy = false
            root.heard = []
            form.forceActiveFocus()
        }

        function button(provider) {
            return findChild(form, "provider " + provider)
        }

        function test_aProviderIsChosenAndTakenBackByMouse() {
            mouseClick(button("VK"))
            compare(root.heard, ["VK"])
            compare(button("VK").text, "Отмена")
            compare(button("VK").Accessible.name, "Отменить вход через VK")
            compare(findChild(form, "waitingLabel").text, "Закончите вход через VK в браузере")
            mouseClick(button("Google")) // another one, at once
            mouseClick(button("Google"))
            compare(root.heard, ["VK", "Google", "cancelled"])
            compare(findChild(form, "waitingLabel").text, "или")
        }

        function test_aProviderIsChosenAndTakenBackByKeyboard() {
            keyClick(Qt.Key_Tab) // past the disabled button to the first way
            verify(button("Google").activeFocus)
            keyClick(Qt.Key_Return)
            keyClick(Qt.Key_Escape)
            keyClick(Qt.Key_Escape) // nothing to take back
            keyClick(Qt.Key_Tab)
            verify(button("VK").activeFocus) // past the one that is not known
            keyClick(Qt.Key_Space)
            keyClick(Qt.Key_Space)
            compare(root.heard, ["Google", "cancelled", "VK", "cancelled"])
        }

        function test_oneThatTheBuildDoesNotKnowSaysSo() {
            const unknown = button("Яндекс")
            verify(!unknown.enabled)
            compare(unknown.Accessible.description, "Вход через Яндекс не настроен в этой сборке")
            mouseClick(unknown)
            compare(root.heard, [])
        }

        function test_nothingElseBeginsWhileTheServiceIsAsked() {
            form.busy = true
            mouseClick(button("Google"))
            compare(root.heard, [])
            compare(button("Google").Accessible.description, "")
        }
    }
}
