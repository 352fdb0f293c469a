import QtQuick

// One chat in the sidebar: its name, and at the end how old it is, that its answer is still coming, or, under the
// pointer, the button of its menu.
BaseButton {
    id: row

    property var marks: []
    property string age
    property bool busy: false
    property bool selected: false
    property bool menuOpen: false // its own menu stands open

    signal menuRequested(item: Item, x: real, y: real)

    Accessible.description: busy ? "Ответ ещё идёт" : age
    Accessible.role: Accessible.ListItem
    Accessible.selected: selected
    horizontalPadding: Theme.gap2
    implicitHeight: Theme.rowHeight

    background: Rectangle {
        color: row.selected ? Theme.sideSel : row.down || row.hovered || row.menuOpen ? Theme.hover : "transparent"
        radius: row.radius
    }
    contentItem: Item {
        MarkedLabel {
            id: label

            anchors.left: parent.left
            anchors.right: end.left
            anchors.verticalCenter: parent.verticalCenter
            marks: row.marks
            objectName: "chatName"
            plain: row.text
        }
        Item {
            id: end

            readonly property real shownWidth: menuButton.visible ? menuButton.width : dot.visible ? dot.width
                : ageLabel.width

            anchors.right: parent.right
            height: parent.height
            width: shownWidth > 0 ? shownWidth + Theme.gap2 : 0

            Label {
                id: ageLabel

                anchors.right: parent.right
                color: row.selected ? Theme.t2 : Theme.t3
                font.pixelSize: Theme.fontSmall
                text: row.age
                visible: !menuButton.visible && !dot.visible
                y: label.y + label.baselineOffset - baselineOffset
            }
            StreamingDot {
                id: dot

                anchors.right: parent.right
                anchors.rightMargin: Theme.gap1
                anchors.verticalCenter: parent.verticalCenter
                objectName: "chatBusyMark"
                visible: row.busy && !menuButton.visible
                width: Theme.px(6)
            }
            Loader {
                id: menuButton

                active: row.hovered || row.menuOpen
                anchors.right: parent.right
                anchors.rightMargin: -Theme.gap1
                anchors.verticalCenter: parent.verticalCenter
                visible: active

                // qmllint disable unqualified
                sourceComponent: IconButton {
                    focusPolicy: Qt.NoFocus
                    hint: ""
                    implicitHeight: Theme.px(24)
                    implicitWidth: Theme.px(24)
                    objectName: "chatMenuButton"
                    symbol: "ellipsis"
                    text: "Меню чата"

                    onClicked: row.menuRequested(this, 0, height)
                }
                // qmllint enable unqualified
            }
        }
    }

    MouseArea {
        acceptedButtons: Qt.RightButton
        anchors.fill: parent

        onPressed: mouse => row.menuRequested(row, mouse.x, mouse.y)
    }
}
