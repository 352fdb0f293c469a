import QtQuick

// Who is signed in, with what concerns them in a menu, and the settings.
Item {
    id: row

    required property string displayName
    required property string initials

    signal settingsRequested
    signal shortcutsRequested
    signal logout

    implicitHeight: Theme.px(48)

    BaseButton {
        id: profile

        Accessible.name: "Профиль: %1".arg(row.displayName)
        Accessible.role: Accessible.ButtonMenu
        anchors.bottom: parent.bottom
        anchors.left: parent.left
        anchors.right: gear.left
        anchors.top: parent.top
        leftPadding: Theme.gap2
        objectName: "profileButton"
        rightPadding: Theme.gap2
        text: row.displayName

        background: Rectangle {
            color: profile.down || profile.hovered || menu.item ? Theme.hover : "transparent"
            radius: profile.radius
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
                    Accessible.ignored: true
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
                anchors.right: parent.right
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
        }

        onClicked: menu.toggle({})

        OnDemand {
            id: menu

            anchors.fill: parent
            source: "qrc:/qt-project.org/imports/Korvi/Views/ProfileMenu.qml"
        }
    }
    Connections {
        function onLogout() {
            Qt.callLater(row.logout) // qmllint disable
        }
        function onSettingsRequested() {
            row.settingsRequested()
        }
        function onShortcutsRequested() {
            Qt.callLater(row.shortcutsRequested) // qmllint disable
        }

        target: menu.item
    }
    IconButton {
        id: gear

        anchors.right: parent.right
        anchors.rightMargin: Theme.gap1
        anchors.verticalCenter: parent.verticalCenter
        hint: "Настройки (Ctrl+,)"
        objectName: "settingsButton"
        symbol: "gear"
        text: "Настройки"

        onClicked: row.settingsRequested()
    }
}
