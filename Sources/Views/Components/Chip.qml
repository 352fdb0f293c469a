import QtQuick
import Korvi.Views // the types written in C++

// Something that is switched on, with a way to switch it off. Delete and Backspace do that too.
BaseButton {
    id: chip

    property string symbol
    property string closeText: "Убрать"

    signal closed

    Accessible.description: "%1: Delete".arg(closeText)
    implicitHeight: Theme.chipHeight
    implicitWidth: Math.ceil(row.implicitWidth) + leftPadding + rightPadding
    leftPadding: Theme.gap2 + Theme.gap1 / 2
    radius: height / 2
    rightPadding: Theme.gap1 / 2

    background: Rectangle {
        color: Theme.accbg
        radius: chip.radius
    }
    contentItem: Item {
        Row {
            id: row

            anchors.verticalCenter: parent.verticalCenter
            spacing: Theme.gap2 - Theme.gap1 / 2

            Symbol {
                anchors.verticalCenter: parent.verticalCenter
                color: Theme.acc
                name: chip.symbol
                size: Theme.px(14)
                visible: chip.symbol.length > 0
            }
            Label {
                anchors.verticalCenter: parent.verticalCenter
                color: Theme.acc
                font.pixelSize: Theme.fontLabel
                font.weight: Font.Medium
                text: chip.text
            }
            IconButton {
                color: Theme.acc
                focusPolicy: Qt.NoFocus
                hint: ""
                implicitHeight: Theme.px(24)
                implicitWidth: Theme.px(24)
                objectName: "chipClose"
                radius: height / 2
                symbol: "xmark"
                symbolSize: Theme.px(12)
                text: chip.closeText

                onClicked: chip.closed()
            }
        }
    }

    Keys.onDeletePressed: closed()
    Keys.onPressed: event => {
        if (event.key === Qt.Key_Backspace) {
            event.accepted = true
            closed()
        }
    }
}
