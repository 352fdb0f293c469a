import QtQuick

// A panel beside the content, with a border that can be moved; in a narrow window it covers the content.
FocusScope {
    id: layout

    default property alias content: contentSlot.data
    property Component panel
    property bool open: false

    readonly property bool covers: width < Theme.foldWidth
    property real share: 0.5 // of the width, for the panel
    readonly property real narrowest: Theme.px(320)
    readonly property real panelWidth: covers ? width
        : Math.round(Math.max(narrowest, Math.min(width - narrowest, width * share)))

    property Item focusBefore: null

    signal closeWanted

    onOpenChanged: {
        if (open) {
            focusBefore = Window.window ? Window.activeFocusItem : null
            panelSlot.forceActiveFocus(Qt.OtherFocusReason)
        } else {
            // To where it was, if that is still there.
            if (focusBefore)
                focusBefore.forceActiveFocus(Qt.OtherFocusReason)
            else
                contentSlot.forceActiveFocus(Qt.OtherFocusReason)
            focusBefore = null
        }
    }

    FocusScope {
        id: contentSlot

        readonly property bool isCovered: layout.open && layout.covers

        enabled: !isCovered
        focus: true
        height: parent.height
        visible: !isCovered
        width: layout.open && !layout.covers ? layout.width - layout.panelWidth : layout.width
    }
    Loader {
        id: panelSlot

        active: layout.open
        anchors.right: parent.right
        height: parent.height
        sourceComponent: layout.panel
        width: layout.panelWidth

        onLoaded: {
            item.focus = true // qmllint disable
        }
    }
    Rectangle {
        id: border

        Accessible.name: "Граница панели"
        Accessible.role: Accessible.Splitter
        activeFocusOnTab: visible
        color: activeFocus || handle.containsMouse || handle.pressed ? Theme.acc : "transparent"
        height: parent.height
        objectName: "panelBorder"
        visible: layout.open && !layout.covers
        width: Theme.gap1 / 2
        x: layout.width - layout.panelWidth - width / 2

        Keys.onEscapePressed: layout.closeWanted()
        Keys.onLeftPressed: layout.share = Math.min(0.8, layout.panelWidth / layout.width + 0.05)
        Keys.onRightPressed: layout.share = Math.max(0.2, layout.panelWidth / layout.width - 0.05)

        MouseArea {
            id: handle

            anchors.fill: parent
            anchors.margins: -Theme.gap1
            cursorShape: Qt.SplitHCursor
            hoverEnabled: true
            preventStealing: true

            onPositionChanged: mouse => {
                if (pressed)
                    layout.share = 1 - mapToItem(layout, mouse.x, 0).x / layout.width
            }
        }
    }
}
