import QtQuick

BaseButton {
    id: control

    property bool busy: false // something runs that the button is about; it can still be pressed

    horizontalPadding: Theme.gap4
    implicitHeight: Theme.buttonHeight
    radius: Theme.radiusField

    background: Rectangle {
        border.color: Theme.line2
        color: control.enabled && (control.down || control.hovered) ? Theme.sunk : "transparent"
        radius: control.radius
    }
    contentItem: Item {
        implicitHeight: label.implicitHeight
        // Of what it would like to show, not of what there is room for.
        implicitWidth: label.implicitWidth + (control.busy ? spinner.implicitWidth + row.spacing : 0)

        Row {
            id: row

            anchors.centerIn: parent
            spacing: Theme.gap2

            Spinner {
                id: spinner

                anchors.verticalCenter: parent.verticalCenter
                running: control.busy
            }
            Label {
                id: label

                color: control.enabled ? Theme.t1 : Theme.t3
                elide: Text.ElideRight
                font.weight: Font.Medium
                horizontalAlignment: Text.AlignHCenter
                text: control.text
                width: Math.min(implicitWidth, control.availableWidth)
            }
        }
    }
}
