import QtQuick
import QtQuick.Templates as T

// A value in steps. `chosen` comes for each step by keyboard, and once at the end of a drag.
T.Slider {
    id: slider

    required property string name

    signal chosen(value: real)

    Accessible.name: name
    Accessible.role: Accessible.Slider
    focusPolicy: Qt.TabFocus // qmllint disable
    implicitHeight: Theme.px(24)
    implicitWidth: Theme.px(200)
    snapMode: T.Slider.SnapAlways
    live: true

    background: Item {
        Rectangle {
            id: track

            anchors.verticalCenter: parent.verticalCenter
            color: Theme.line2
            height: Theme.gap1
            radius: height / 2
            width: parent.width

            Rectangle {
                color: Theme.acc
                height: parent.height
                radius: parent.radius
                width: slider.visualPosition * (slider.availableWidth - slider.handle.width) + slider.handle.width / 2
            }
        }
    }
    handle: Rectangle {
        border.color: slider.pressed || slider.hovered ? Theme.acc : Theme.line2
        color: Theme.dark ? Theme.t1 : Theme.raise
        height: width
        radius: width / 2
        width: Theme.px(20)
        x: slider.leftPadding + slider.visualPosition * (slider.availableWidth - width)
        y: slider.topPadding + (slider.availableHeight - height) / 2

        FocusRing {
            around: parent.radius
            shown: slider.visualFocus
        }
    }

    onMoved: {
        if (!pressed)
            chosen(value)
    }
    onPressedChanged: {
        if (!pressed)
            chosen(value)
    }
}
