import QtQuick
import Korvi.Views // the types written in C++

BaseButton {
    id: row

    required property string displayName
    required property string initials

    signal logout
    signal settingsRequested

    Accessible.name: "Профиль: %1".arg(displayName)
    Accessible.role: Accessible.ButtonMenu
    implicitHeight: Theme.px(48)
    leftPadding: Theme.gap2
    objectName: "profileButton"
    rightPadding: Theme.gap4
    text: displayName

    background: Rectangle {
        color: row.down || row.hovered ? Theme.hover : "transparent"
        radius: row.radius
    }
    contentItem: Item {
        Rectangle {
            id: avatar

            anchors.verticalCenter: parent.verticalCenter
            color: Theme.accbg
            height: width
            radius: width / 2
            width: Theme.px(28)

            Label {
                anchors.centerIn: parent
                color: Theme.acc
                font.pixelSize: Theme.fontSmall
                font.weight: Font.DemiBold
                text: row.initials
            }
        }
        Column {
            anchors.left: avatar.right
            anchors.leftMargin: Theme.gap2
            anchors.right: gear.left
            anchors.rightMargin: Theme.gap2
            anchors.verticalCenter: parent.verticalCenter

            Label {
                elide: Text.ElideRight
                font.weight: Font.Medium
                lineHeight: Theme.px(17)
                text: row.displayName
                width: parent.width
            }
            Label {
                color: Theme.t3
                elide: Text.ElideRight
                font.pixelSize: Theme.fontSmall
                lineHeight: Theme.px(14)
                text: "Персональный"
                width: parent.width
            }
        }
        Symbol {
            id: gear

            anchors.right: parent.right
            anchors.verticalCenter: parent.verticalCenter
            color: Theme.t2
            name: "gear"
            size: Theme.icon
        }
    }

    onClicked: menu.open()

    PopupMenu {
        id: menu

        y: -implicitHeight - Theme.gap1

        PopupMenuItem {
            objectName: "settingsItem"
            symbol: "gear"
            text: "Настройки"

            onTriggered: row.settingsRequested()
        }
        PopupMenuItem {
            objectName: "logoutItem"
            symbol: "rectangle.portrait.and.arrow.right"
            text: "Выйти"

            onTriggered: row.logout()
        }
    }
}
