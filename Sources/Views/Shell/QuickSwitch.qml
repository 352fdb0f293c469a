import QtQuick
import QtQuick.Templates as T
import Korvi.ViewModels
import Korvi.Views // the types written in C++

// Goes to a chat by a few letters of its name: the best fit first, without letters the most recent.
Sheet {
    id: switcher

    required property var chats
    required property real activeChatId

    readonly property int visibleRows: 8

    signal chosen(chatId: real)

    function choose(row: int): void {
        const chatId = finder.chatIdAt(row)
        if (chatId < 0)
            return
        focusBefore = null // whoever hears of it says where the keyboard goes
        chosen(chatId)
        close()
    }

    firstFocus: field
    naturalWidth: Theme.px(Theme.paletteWidth)
    padding: 0

    contentItem: Item {
        implicitHeight: top.height + list.rowsHeight + foot.height

        Item {
            id: top

            height: Theme.headerHeight
            width: parent.width

            Symbol {
                id: lens

                anchors.left: parent.left
                anchors.leftMargin: Theme.gap4
                anchors.verticalCenter: parent.verticalCenter
                color: Theme.t3
                name: "magnifyingglass"
                size: Theme.icon
            }
            TextInput {
                id: field

                Accessible.name: "Перейти к чату"
                Accessible.role: Accessible.EditableText
                Accessible.searchEdit: true
                anchors.left: lens.right
                anchors.leftMargin: Theme.gap2
                anchors.right: parent.right
                anchors.rightMargin: Theme.gap4
                anchors.verticalCenter: parent.verticalCenter
                clip: true
                color: Theme.t1
                font.family: Theme.family
                font.pixelSize: Theme.fontHeading2
                objectName: "quickSwitchField"
                renderType: Text.NativeRendering
                selectByMouse: true
                selectedTextColor: Theme.t1
                selectionColor: Theme.selection

                Keys.onDownPressed: list.step(1)
                Keys.onEnterPressed: switcher.choose(list.currentIndex)
                Keys.onPressed: event => {
                    const steps = { [Qt.Key_PageUp]: -switcher.visibleRows, [Qt.Key_PageDown]: switcher.visibleRows }
                    event.accepted = event.key in steps
                    if (event.accepted)
                        list.step(steps[event.key])
                }
                Keys.onReturnPressed: switcher.choose(list.currentIndex)
                Keys.onUpPressed: list.step(-1)

                Label {
                    Accessible.ignored: true
                    color: Theme.t3
                    font: field.font
                    height: field.height
                    text: "Перейти к чату"
                    visible: field.length === 0 && field.preeditText.length === 0
                }
            }
            Rectangle {
                anchors.bottom: parent.bottom
                color: Theme.line
                height: Theme.hairline
                width: parent.width
            }
        }
        ListView {
            id: list

            readonly property real rowsHeight: switcher.visibleRows * Theme.buttonHeight + Theme.gap2 * 2

            // Round the ends by one step, to the ends by more.
            function step(by: int): void {
                if (count === 0)
                    return
                const to = currentIndex + by
                const single = Math.abs(by) === 1
                currentIndex = single ? (to + count) % count : Math.max(0, Math.min(count - 1, to))
            }

            Accessible.name: "Чаты"
            Accessible.role: Accessible.List
            T.ScrollBar.vertical: ThinScrollBar {}
            anchors.bottom: foot.top
            anchors.left: parent.left
            anchors.right: parent.right
            anchors.top: top.bottom
            bottomMargin: Theme.gap2
            cacheBuffer: 0
            boundsBehavior: Flickable.StopAtBounds
            clip: true
            highlightMoveDuration: 0
            highlightMoveVelocity: -1
            model: finder
            objectName: "quickSwitchList"
            topMargin: Theme.gap2

            // qmllint disable unqualified
            delegate: QuickSwitchRow {
                required property string name
                required property string age
                required marks
                required property int index

                current: ListView.isCurrentItem
                detail: age
                text: name
                width: list.width - Theme.gap2 * 2
                x: Theme.gap2

                onClicked: switcher.choose(index)
            }
            // qmllint enable unqualified

            PointerChoice {
                list: list
            }
            Label {
                anchors.centerIn: parent
                color: Theme.t3
                objectName: "quickSwitchNothing"
                text: field.length > 0 ? "Ничего не найдено" : "Нет чатов"
                visible: list.count === 0
            }
        }
        Item {
            id: foot

            anchors.bottom: parent.bottom
            height: Theme.buttonHeight
            width: parent.width

            Rectangle {
                color: Theme.line
                height: Theme.hairline
                width: parent.width
            }
            Label {
                anchors.left: parent.left
                anchors.margins: Theme.gap4
                anchors.right: parent.right
                anchors.verticalCenter: parent.verticalCenter
                color: Theme.t3
                elide: Text.ElideRight
                font.pixelSize: Theme.fontSmall
                text: "↑ ↓  выбрать     Enter  открыть     Esc  закрыть"
            }
        }
        ChatQuickFindModel {
            id: finder

            activeChatId: switcher.activeChatId // qmllint disable
            query: field.text
            source: switcher.chats

            onModelReset: {
                list.currentIndex = count > 0 ? 0 : -1
                list.positionViewAtBeginning()
            }
        }
    }
}
