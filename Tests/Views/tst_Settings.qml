import QtQuick
import QtTest
import Korvi.Views

FocusScope {
    id: root

    property var heard: []

    focus: true
    height: 600
    width: 520

    SettingsSidebar {
        id: sidebar

        height: 300
        sections: [
            { name: "one", title: "Первый", symbol: "gear" },
            { name: "two", title: "Второй", symbol: "info.circle" },
            { name: "three", title: "Третий", symbol: "paintbrush" },
        ]
        width: 200
    }
    Column {
        id: column

        width: 300
        x: 210

        SettingsAction {
            id: action

            symbol: "trash"
            text: "Сделать"

            onTriggered: root.heard.push("triggered")
        }
        StepSlider {
            id: slider

            from: 11
            name: "Размер"
            stepSize: 1
            to: 20
            value: 13
            width: 260

            onChosen: value => root.heard.push(value)
        }
        SettingsRow {
            id: row

            title: "Название строки, довольно длинное"

            SecondaryButton {
                id: rowButton

                text: "Сбросить"
            }
        }
    }

    TestCase {
        name: "Settings"
        when: windowShown

        function init() {
            failOnWarning(/./)
            root.heard = []
            action.unavailable = ""
            slider.value = 13
            sidebar.currentIndex = 0
        }

        function test_sectionsAreChosenByArrowKeys() {
            sidebar.forceActiveFocus()
            keyClick(Qt.Key_Down)
            compare(sidebar.currentIndex, 1)
            keyClick(Qt.Key_Down)
            keyClick(Qt.Key_Down) // round
            compare(sidebar.currentIndex, 0)
            keyClick(Qt.Key_Up)
            compare(sidebar.currentIndex, 2)
            mouseClick(findChild(sidebar, "twoSection"))
            compare(sidebar.currentIndex, 1)
            keyClick(Qt.Key_Up) // the keyboard goes on from there
            compare(sidebar.currentIndex, 0)
        }

        function test_whatCannotBeUsedCanBeReachedAndSaysWhy() {
            action.forceActiveFocus(Qt.TabFocusReason)
            keyClick(Qt.Key_Return)
            compare(root.heard, ["triggered"])
            action.unavailable = "Пока нельзя"
            compare(action.hint, "Пока нельзя")
            verify(action.activeFocus)
            keyClick(Qt.Key_Return)
            mouseClick(action)
            compare(root.heard, ["triggered"])
        }

        function test_theSliderTellsOfKeysAtOnceAndOfADragAtItsEnd() {
            slider.forceActiveFocus(Qt.TabFocusReason)
            keyClick(Qt.Key_Right)
            keyClick(Qt.Key_Right)
            keyClick(Qt.Key_Left)
            compare(root.heard, [14, 15, 14])
            keyClick(Qt.Key_End)
            root.heard = []
            const knob = slider.handle
            const from = knob.mapToItem(slider, knob.width / 2, knob.height / 2)
            mousePress(slider, from.x, from.y)
            for (let x = from.x; x > 0; x -= 10)
                mouseMove(slider, x, from.y)
            compare(root.heard, [])
            mouseRelease(slider, 0, from.y)
            compare(root.heard, [11])
        }

        function test_aRowThatIsTooNarrowPutsItsControlBelow() {
            for (const [width, stacked] of [[600, false], [300, true], [600, false]]) {
                column.width = width
                compare(row.stacked, stacked)
                verify(rowButton.width > rowButton.font.pixelSize * 5, "its text fits")
                const at = rowButton.mapToItem(row, 0, 0)
                verify(at.x >= 0 && at.x + rowButton.width <= row.width)
                verify(at.y + rowButton.height <= row.height)
            }
            column.width = 300
        }
    }
}
