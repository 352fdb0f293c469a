import QtQuick
import QtTest
import Korvi.Views
import "qrc:/qt-project.org/imports/Korvi/Views/Shortcuts.js" as Shortcuts

FocusScope {
    id: root

    property var heard: []

    focus: true
    height: 500
    width: 520

    TextInput {
        id: field

        focus: true
    }
    SelectableText {
        id: reading

        content: "Ответ"
        y: 100
    }
    ShortcutSet {
        onActivated: id => root.heard.push(id)
    }
    OnDemand {
        id: sheet

        source: "qrc:/qt-project.org/imports/Korvi/Views/ShortcutSheet.qml"
    }

    TestCase {
        name: "Shortcuts"
        when: windowShown

        function init() {
            failOnWarning(/./)
            root.heard = []
            field.forceActiveFocus()
        }

        // On a Russian keyboard the same key gives another character.
        function test_bothKeyboards_data() {
            return [
                { id: "newChat", latin: Qt.Key_N, russian: "Т" },
                { id: "quickSwitch", latin: Qt.Key_K, russian: "Л" },
                { id: "search", latin: Qt.Key_F, russian: "А" },
                { id: "focusComposer", latin: Qt.Key_L, russian: "Д" },
                { id: "chooseModel", latin: Qt.Key_M, russian: "Ь" },
                { id: "attach", latin: Qt.Key_U, russian: "Г" },
                { id: "settings", latin: Qt.Key_Comma, russian: "Б" },
                { id: "shortcuts", latin: Qt.Key_Slash, russian: "." },
            ].map(row => Object.assign({ tag: row.id }, row))
        }

        function test_bothKeyboards(data) {
            keyClick(data.latin, Qt.ControlModifier)
            compare(root.heard, [data.id])
            keyboard.click(root.Window.window, data.russian, Qt.ControlModifier)
            compare(root.heard, [data.id, data.id])
            compare(field.text, "")
        }

        function test_whereATextIsReadTheyAreHeard() {
            mouseClick(reading)
            verify(reading.activeFocus)
            keyClick(Qt.Key_L, Qt.ControlModifier)
            reading.takeCaret()
            keyClick(Qt.Key_K, Qt.ControlModifier)
            compare(root.heard, ["focusComposer", "quickSwitch"])
        }

        function test_eachKeyMeansOneThing() {
            const all = [].concat(...Shortcuts.registered().map(row => Shortcuts.sequences(row.keys)))
            compare(new Set(all).size, all.length)
            compare(Shortcuts.registered().length, test_bothKeyboards_data().length)
        }

        function test_underADialogTheyAreSilent() {
            sheet.open({})
            keyClick(Qt.Key_N, Qt.ControlModifier)
            compare(root.heard, [])
            keyClick(Qt.Key_Escape)
            tryVerify(() => !sheet.item)
            verify(field.activeFocus)
            keyClick(Qt.Key_N, Qt.ControlModifier)
            compare(root.heard, ["newChat"])
        }
    }
}
