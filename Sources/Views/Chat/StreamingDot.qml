import QtQuick

// The answer is still coming.
Rectangle {
    id: dot

    Accessible.ignored: true
    color: Theme.acc
    height: width
    radius: width / 2
    width: Theme.px(8)

    SequentialAnimation on opacity {
        loops: Animation.Infinite
        running: dot.visible && !Theme.reducedMotion

        NumberAnimation { duration: Theme.pulse / 2; easing.type: Easing.InOutSine; from: 1; to: 0.35 }
        NumberAnimation { duration: Theme.pulse / 2; easing.type: Easing.InOutSine; from: 0.35; to: 1 }
    }
}
