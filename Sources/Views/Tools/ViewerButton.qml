import QtQuick

// A round button over a picture.
IconButton {
    id: button

    color: enabled ? Theme.stageText : Theme.t3
    implicitHeight: Theme.px(36)
    implicitWidth: Theme.px(36)
    radius: height / 2

    background: Rectangle {
        color: button.down || button.hovered ? Theme.stageLit : Theme.stageButton
        radius: button.radius
    }
}
