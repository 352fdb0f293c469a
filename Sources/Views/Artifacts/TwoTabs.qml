import QtQuick

// «Просмотр» and «Код». The arrow keys change between them.
Rectangle {
    id: tabs

    required property string current // "preview" or "code"

    signal chosen(string tab)

    Accessible.role: Accessible.PageTabList
    color: Theme.sunk
    implicitHeight: Theme.px(30)
    implicitWidth: row.width + Theme.gap1
    radius: Theme.radiusRow

    Keys.onLeftPressed: {
        chosen("preview")
        row.children[0].forceActiveFocus(Qt.TabFocusReason)
    }
    Keys.onRightPressed: {
        chosen("code")
        row.children[1].forceActiveFocus(Qt.TabFocusReason)
    }

    Row {
        id: row

        height: parent.height - Theme.gap1
        x: Theme.gap1 / 2
        y: Theme.gap1 / 2

        Repeater {
            model: [{ tab: "preview", title: "Просмотр" }, { tab: "code", title: "Код" }]

            // qmllint disable unqualified
            delegate: BaseButton {
                id: button

                required property var modelData
                readonly property bool isCurrent: modelData.tab === tabs.current

                Accessible.role: Accessible.PageTab
                Accessible.selected: isCurrent
                focusPolicy: isCurrent || activeFocus ? Qt.TabFocus : Qt.NoFocus // not taken from the one that has it
                height: parent.height
                horizontalPadding: Theme.gap3
                objectName: modelData.tab + "Tab"
                radius: Theme.radiusRow - Theme.gap1 / 2
                text: modelData.title

                background: Rectangle {
                    border.color: button.isCurrent ? Theme.line : "transparent"
                    color: button.isCurrent ? Theme.raise : "transparent"
                    radius: button.radius
                }
                contentItem: Label {
                    color: button.isCurrent ? Theme.t1 : Theme.t2
                    font.pixelSize: Theme.fontLabel
                    font.weight: button.isCurrent ? Font.Medium : Font.Normal
                    text: button.text
                }

                onClicked: tabs.chosen(modelData.tab)
            }
            // qmllint enable unqualified
        }
    }
}
