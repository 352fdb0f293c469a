import QtQuick
import "SearchTab.js" as SearchTab

// The tabs of a search. The arrow keys choose; the Tab key stops at the chosen one.
Row {
    id: bar

    required property var tabs // of SearchTab.js
    required property var counts // by tab; 0 for none
    required property string current

    signal chosen(string tab)

    function choose(by: int): void {
        const at = tabs.indexOf(current) + by
        if (at < 0 || at >= tabs.length)
            return
        buttons.itemAt(at).forceActiveFocus(Qt.TabFocusReason)
        chosen(tabs[at])
    }

    Accessible.role: Accessible.PageTabList
    spacing: Theme.gap1

    Keys.onLeftPressed: choose(-1)
    Keys.onRightPressed: choose(1)

    Repeater {
        id: buttons

        model: bar.tabs

        // qmllint disable unqualified
        delegate: BaseButton {
            id: button

            required property string modelData
            readonly property bool isCurrent: modelData === bar.current

            Accessible.role: Accessible.PageTab
            Accessible.selected: isCurrent
            focusPolicy: isCurrent || activeFocus ? Qt.TabFocus : Qt.NoFocus // not taken from the one that has it
            horizontalPadding: Theme.gap3
            implicitHeight: Theme.chipHeight
            objectName: modelData + "Tab"
            radius: height / 2
            text: SearchTab.titles[modelData]

            background: Rectangle {
                color: button.isCurrent ? Theme.sunk : button.hovered ? Theme.hover : "transparent"
                radius: button.radius
            }
            contentItem: Row {
                spacing: Theme.gap1 + Theme.gap1 / 2

                Label {
                    anchors.verticalCenter: parent.verticalCenter
                    color: button.isCurrent ? Theme.t1 : Theme.t2
                    font.pixelSize: Theme.fontLabel
                    font.weight: button.isCurrent ? Font.Medium : Font.Normal
                    text: button.text
                }
                Label {
                    anchors.verticalCenter: parent.verticalCenter
                    color: Theme.t3
                    font.pixelSize: Theme.fontSmall
                    text: bar.counts[button.modelData] || ""
                    visible: text.length > 0
                }
            }

            onClicked: bar.chosen(modelData)
        }
        // qmllint enable unqualified
    }
}
