import QtQuick

// A way to sign in through the browser. While its page is open there, the button takes that back. One that this build
// does not know stays in its place and says why; the hover is watched from outside, because a disabled control sees no
// pointer.
Item {
    id: slot

    required property string provider
    required property bool configured
    property bool waiting: false

    signal chosen
    signal cancelled

    implicitHeight: button.implicitHeight

    SecondaryButton {
        id: button

        readonly property string reason: "Вход через %1 не настроен в этой сборке".arg(slot.provider)

        Accessible.description: slot.configured ? "" : reason
        Accessible.name: slot.waiting ? "Отменить вход через %1".arg(slot.provider)
            : "Войти через %1".arg(slot.provider)
        anchors.fill: parent
        busy: slot.waiting
        enabled: slot.configured
        objectName: "provider " + slot.provider
        text: slot.waiting ? "Отмена" : slot.provider

        onClicked: {
            if (slot.waiting)
                slot.cancelled()
            else
                slot.chosen()
        }
    }
    HoverHandler {
        id: pointer

        enabled: !slot.configured
    }
    BubbleToolTip {
        parent: slot
        text: button.reason
        visible: pointer.hovered
    }
}
