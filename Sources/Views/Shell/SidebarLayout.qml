import QtQuick

// A sidebar beside the content, or, in a narrow window, a drawer over it behind a button.
FocusScope {
    id: layout

    property alias sidebar: sidebarSlot.data
    default property alias content: contentSlot.data

    readonly property bool folded: width < Theme.foldWidth
    property bool open: false // the drawer; means nothing while the sidebar stands beside the content

    function close(): void {
        if (!open)
            return
        open = false
        contentSlot.forceActiveFocus()
    }

    // Brings the sidebar on the screen.
    function reveal(): void {
        if (!folded)
            return
        open = true
        sidebarSlot.forceActiveFocus()
    }

    function toggle(): void {
        if (open)
            close()
        else
            reveal()
    }

    // The keyboard does not stay behind in a sidebar that folds away.
    onFoldedChanged: {
        open = false
        if (folded && sidebarSlot.activeFocus)
            contentSlot.forceActiveFocus()
    }

    FocusScope {
        id: contentSlot

        anchors.bottom: parent.bottom
        anchors.left: parent.left
        anchors.leftMargin: layout.folded ? 0 : sidebarSlot.width
        anchors.right: parent.right
        anchors.top: parent.top
        enabled: !layout.open
        focus: true
    }
    Rectangle {
        anchors.fill: parent
        color: Theme.scrim
        opacity: layout.open ? 1 : 0
        visible: opacity > 0

        Behavior on opacity { NumberAnimation { duration: Theme.calm } }

        MouseArea {
            anchors.fill: parent
            hoverEnabled: true

            onClicked: layout.close()
            onWheel: wheel => wheel.accepted = true
        }
    }
    FocusScope {
        id: sidebarSlot

        height: parent.height
        visible: !layout.folded || x > -width
        width: Theme.px(Theme.sidebarWidth)
        x: !layout.folded || layout.open ? 0 : -width

        Behavior on x {
            enabled: layout.folded
            NumberAnimation { duration: Theme.calm; easing.type: Easing.OutCubic }
        }
    }
}
