import QtQuick

BaseButton {
    id: row

    property var marks: []
    property string detail
    property bool current: false

    Accessible.role: Accessible.ListItem
    Accessible.selected: current
    focusPolicy: Qt.NoFocus
    horizontalPadding: Theme.gap2
    implicitHeight: Theme.buttonHeight

    background: Rectangle {
        color: row.current ? Theme.pick : "transparent"
        radius: row.radius
    }
    contentItem: Item {
        MarkedLabel {
            anchors.left: parent.left
            anchors.right: detailLabel.left
            anchors.rightMargin: Theme.gap3
            anchors.verticalCenter: parent.verticalCenter
            marks: row.marks
            plain: row.text
        }
        Label {
            id: detailLabel

            anchors.right: parent.right
            anchors.verticalCenter: parent.verticalCenter
            color: row.current ? Theme.t2 : Theme.t3
            font.pixelSize: Theme.fontSmall
            text: row.detail
        }
    }
}
