import QtQuick

// A way to sign in that this build does not know. It stays in its place and says why it cannot be used; the hover is
// watched from outside because a disabled control sees no pointer.
Item {
    id: slot

    required property string provider

    implicitHeight: button.implicitHeight

    SecondaryButton {
        id: button

        Accessible.description: tip.text
        anchors.fill: parent
        enabled: false
        text: slot.provider
    }
    HoverHandler {
        id: pointer
    }
    BubbleToolTip {
        id: tip

        parent: slot
        text: "Вход через %1 не настроен в этой сборке".arg(slot.provider)
        visible: pointer.hovered
    }
}
