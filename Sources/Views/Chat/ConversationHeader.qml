import QtQuick
import Korvi.Views // the types written in C++

// Over the conversation: its model, and, where no sidebar shows it, its name.
Item {
    id: header

    required property string title // empty for a new chat
    required property string modelName
    required property var models
    required property string status
    required property bool sidebarFolded
    required property bool lined // something has been scrolled under it
    property bool choosingModel: false // the picker is to be open

    signal sidebarRequested
    signal modelsRequested
    signal modelsClosed
    signal modelChosen(modelId: string)
    signal menuRequested(item: Item, x: real, y: real) // of the open chat
    signal reconnect

    implicitHeight: Theme.headerHeight

    onChoosingModelChanged: showPicker()
    Component.onCompleted: showPicker()

    function showPicker(): void {
        if (choosingModel)
            picker.open({ models: header.models })
        else
            picker.close()
    }

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
    ModelButton {
        id: modelButton

        anchors.left: sidebarButton.visible ? sidebarButton.right : parent.left
        anchors.leftMargin: sidebarButton.visible ? Theme.gap1 : Theme.gap4
        anchors.verticalCenter: parent.verticalCenter
        open: header.choosingModel
        text: header.modelName
        width: Math.min(implicitWidth, header.width / 2)

        onClicked: header.modelsRequested()

        OnDemand {
            id: picker

            anchors.fill: parent
            source: "qrc:/qt-project.org/imports/Korvi/Views/ModelPicker.qml"
        }
    }
    Connections {
        function onChosen(modelId) {
            header.modelChosen(modelId)
        }
        function onClosed() {
            header.modelsClosed()
        }

        target: picker.item
    }
    Label {
        Accessible.role: Accessible.Heading
        anchors.left: modelButton.right
        anchors.leftMargin: Theme.gap2
        anchors.right: connection.visible ? connection.left : menuButton.left
        anchors.rightMargin: Theme.gap2
        anchors.verticalCenter: parent.verticalCenter
        color: Theme.t2
        elide: Text.ElideRight
        objectName: "conversationTitle"
        text: header.title
        visible: header.sidebarFolded
    }
    ConnectionState {
        id: connection

        anchors.right: menuButton.visible ? menuButton.left : parent.right
        anchors.rightMargin: menuButton.visible ? Theme.gap2 : menuButton.anchors.rightMargin
        anchors.verticalCenter: parent.verticalCenter
        status: header.status

        onReconnect: header.reconnect()
    }
    IconButton {
        id: menuButton

        anchors.right: parent.right
        anchors.rightMargin: header.sidebarFolded ? Theme.gap2 : Theme.gap4
        anchors.verticalCenter: parent.verticalCenter
        objectName: "conversationMenuButton"
        symbol: "ellipsis"
        text: "Меню чата"
        visible: header.title.length > 0

        onClicked: header.menuRequested(menuButton, 0, height + Theme.gap1)
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
