import QtQuick
import QtTest
import Korvi.Views

Item {
    id: root

    height: 200
    width: 600

    NoticeArea {
        id: area

        error: ""
        hint: ""
        width: parent.width
    }
    SignalSpy {
        id: retries

        signalName: "retry"
        target: area
    }

    SignalSpy {
        id: openings

        signalName: "readyChatWanted"
        target: area
    }

    TestCase {
        name: "NoticeArea"
        when: windowShown

        function init() {
            failOnWarning(/./)
        }

        function button(text) {
            const find = item => {
                if (item.text === text && item.visible && item.clicked !== undefined)
                    return item
                for (let i = 0; i < item.children.length; ++i) {
                    const found = find(item.children[i])
                    if (found)
                        return found
                }
                return null
            }
            return find(area)
        }

        function test_offersToAskAgainOnlyWhereThatHelps() {
            area.error = "Занято"
            compare(button("Повторить"), null)
            verify(button("Скрыть"))
            area.canRetry = true
            mouseClick(button("Повторить"))
            compare(retries.count, 1)
        }

        function test_theHintGivesWayToAnError() {
            area.error = ""
            area.hint = "Это может занять время..."
            const hint = findChild(area, "generationHint")
            verify(hint.visible)
            area.error = "Занято"
            verify(!hint.visible)
        }

        function test_anAnswerThatIsReadyElsewhereStandsBesideAnError() {
            area.hint = ""
            area.error = "Занято"
            waitForRendering(area)
            const height = area.implicitHeight
            area.readyChat = "Отпуск в горах"
            verify(findChild(area, "readyBanner").text.includes("Отпуск в горах"))
            tryVerify(() => area.implicitHeight > height)
            mouseClick(button("Открыть"))
            compare(openings.count, 1)
            area.readyChat = ""
            tryVerify(() => area.implicitHeight === height)
        }
    }
}
