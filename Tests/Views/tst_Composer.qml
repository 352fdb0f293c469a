import QtQuick
import QtTest
import Korvi.Views

Item {
    id: root

    property string draft
    property int sent: 0
    property int stopped: 0

    height: 600
    width: 600

    Composer {
        id: composer

        canSend: root.draft.trim().length > 0
        generating: false
        text: root.draft
        width: parent.width

        onEdited: text => root.draft = text
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
            composer.generating = false
            root.draft = ""
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
            keyClick(Qt.Key_End)
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
    }
}
