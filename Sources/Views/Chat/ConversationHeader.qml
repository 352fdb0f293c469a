import QtQuick

Item {
    id: header

    required property string title
    required property string status
    required property bool sidebarFolded
    required property bool lined // something has been scrolled under it

    signal sidebarRequested
    signal reconnect

    implicitHeight: Theme.headerHeight

    IconButton {
        id: sidebarButton

        anchors.left: parent.left
        anchors.leftMargin: Theme.gap2
        anchors.verticalCenter: parent.verticalCenter
        objectName: "sidebarButton"
        symbol: "sidebar"
        text: "Показать чаты"
        visible: header.sidebarFolded

        onClicked: header.sidebarRequested()
    }
    Label {
        Accessible.role: Accessible.Heading
        anchors.left: sidebarButton.visible ? sidebarButton.right : parent.left
        anchors.leftMargin: sidebarButton.visible ? Theme.gap2 : Theme.gap6
        anchors.right: connection.left
        anchors.rightMargin: Theme.gap4
        anchors.verticalCenter: parent.verticalCenter
        elide: Text.ElideRight
        font.weight: Font.DemiBold
        objectName: "conversationTitle"
        text: header.title
    }
    ConnectionState {
        id: connection

        anchors.right: parent.right
        anchors.rightMargin: header.sidebarFolded ? Theme.gap3 : Theme.gap6
        anchors.verticalCenter: parent.verticalCenter
        status: header.status

        onReconnect: header.reconnect()
    }
    Rectangle {
        anchors.bottom: parent.bottom
        color: Theme.line
        height: Theme.hairline
        opacity: header.lined ? 1 : 0
        width: parent.width

        Behavior on opacity { NumberAnimation { duration: Theme.quick } }
    }
}
