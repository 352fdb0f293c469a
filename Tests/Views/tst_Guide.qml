import QtQuick
import QtTest
import Korvi.Views

FocusScope {
    id: root

    property var heard: []

    focus: true
    height: 640
    width: 900

    OnDemand {
        id: guide

        source: "qrc:/qt-project.org/imports/Korvi/Views/OnboardingGuideView.qml"
    }
    OnDemand {
        id: consent

        source: "qrc:/qt-project.org/imports/Korvi/Views/AIDataConsentView.qml"
    }
    Connections {
        function onComplete() { root.heard.push("complete") }
        function onPrimaryAction() { root.heard.push("primary") }

        ignoreUnknownSignals: true
        target: guide.item
    }
    Connections {
        function onAccepted() { root.heard.push("accepted") }

        target: consent.item
    }

    TestCase {
        name: "FirstRun"
        when: windowShown

        function init() {
            failOnWarning(/./)
            root.heard = []
        }

        function resize(width) {
            root.width = width
            root.Window.window.width = width
            tryCompare(root.Window.window, "width", width)
        }

        function cleanup() {
            guide.close()
            consent.close()
            tryVerify(() => guide.item === null && consent.item === null)
            resize(900)
            Theme.textSize = 13
        }

        function test_everyStepHasItsWordsAndItsDrawing_data() {
            const rows = []
            for (const kind of ["app", "agent"])
                for (const [width, size] of [[900, 13], [520, 13], [520, 20], [1200, 20]])
                    rows.push({ tag: `${kind} ${width} px, text ${size}`, kind: kind, width: width, size: size,
                        count: kind === "app" ? 5 : 3 })
            return rows
        }

        function test_everyStepHasItsWordsAndItsDrawing(data) {
            resize(data.width)
            Theme.textSize = data.size
            guide.open({ kind: data.kind })
            compare(guide.item.steps.length, data.count)
            for (let step = 0; step < data.count; ++step) {
                compare(guide.item.stepIndex, step)
                const content = guide.item.contentItem
                compare(findChild(content, "guideTitle").text, guide.item.steps[step].title)
                const button = findChild(content, "guideButton")
                verify(button.activeFocus, "step " + step)
                const last = step === data.count - 1
                compare(button.text, last && data.kind === "app" ? "Начать чат" : "Понятно")
                compare(findChild(content, "skipGuideButton").visible, !last)
                const corner = button.mapToItem(content, button.width, button.height)
                verify(corner.x <= content.width && corner.y <= content.height, "the button is in sight")
                keyClick(Qt.Key_Return)
            }
            compare(root.heard, data.kind === "app" ? ["primary", "complete"] : ["complete"])
        }

        function test_waysOut_data() {
            return [
                { tag: "esc", keys: [Qt.Key_Escape] },
                { tag: "skip", keys: [Qt.Key_Backtab, Qt.Key_Return] },
                { tag: "from the middle", keys: [Qt.Key_Right, Qt.Key_Right, Qt.Key_Left, Qt.Key_Escape] },
            ]
        }

        function test_waysOut(data) {
            guide.open({ kind: "app" })
            for (const key of data.keys)
                keyClick(key)
            compare(root.heard, ["complete"])
        }

        function test_arrowsStayWithinTheGuide() {
            guide.open({ kind: "agent" })
            keyClick(Qt.Key_Left)
            compare(guide.item.stepIndex, 0)
            for (let i = 0; i < 5; ++i)
                keyClick(Qt.Key_Right)
            compare(guide.item.stepIndex, 2)
            compare(root.heard, [])
        }

        function test_whatDoesNotFitIsScrolledByKeys() {
            resize(420)
            Theme.textSize = 20
            consent.open({})
            const rows = findChild(consent.item.contentItem, "passedOn")
            verify(rows.contentHeight > rows.height)
            for (let i = 0; i < 60; ++i)
                keyClick(Qt.Key_Down)
            compare(rows.contentY, rows.contentHeight - rows.height)
            keyClick(Qt.Key_Up)
            verify(rows.contentY < rows.contentHeight - rows.height)
            verify(findChild(consent.item.contentItem, "acceptButton").activeFocus)
        }

        function test_onlyYesClosesTheConsent() {
            consent.open({})
            const sheet = consent.item
            keyClick(Qt.Key_Escape)
            mouseClick(root, 2, 2)
            verify(sheet.visible)
            keyClick(Qt.Key_Left)
            keyClick(Qt.Key_Return) // "no"
            verify(!findChild(sheet.contentItem, "acceptButton").activeFocus)
            keyClick(Qt.Key_Escape) // the message
            tryVerify(() => findChild(sheet.contentItem, "rejectButton").activeFocus)
            compare(root.heard, [])
            keyClick(Qt.Key_Right)
            keyClick(Qt.Key_Return)
            compare(root.heard, ["accepted"])
        }

        function test_theConsentFitsEveryWindow_data() {
            return [{ width: 900, size: 13 }, { width: 520, size: 20 }, { width: 420, size: 13 }]
                .map(row => Object.assign({ tag: `${row.width} px, text ${row.size}` }, row))
        }

        function test_theConsentFitsEveryWindow(data) {
            resize(data.width)
            Theme.textSize = data.size
            consent.open({})
            const sheet = consent.item
            verify(sheet.width <= data.width && sheet.height <= root.height)
            for (const name of ["acceptButton", "rejectButton"]) {
                const button = findChild(sheet.contentItem, name)
                const corner = button.mapToItem(sheet.contentItem, button.width, button.height)
                verify(corner.x <= sheet.contentItem.width + 1 && corner.y <= sheet.contentItem.height + 1, name)
            }
        }
    }
}
