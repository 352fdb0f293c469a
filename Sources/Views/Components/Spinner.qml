import QtQuick

// Three dots that breathe in turn; still when the desktop asks for less motion, gone when nothing runs.
Row {
    id: spinner

    required property bool running
    property color color: Theme.t2

    Accessible.ignored: true
    spacing: Theme.gap1
    visible: running

    Repeater {
        model: 3

        // qmllint disable unqualified
        Rectangle {
            id: dot

            required property int index

            color: spinner.color
            height: width
            radius: width / 2
            width: Theme.px(6)

            SequentialAnimation on opacity {
                loops: Animation.Infinite
                running: spinner.running && !Theme.reducedMotion

                PauseAnimation { duration: dot.index * Theme.pulse / 6 }
                NumberAnimation { duration: Theme.pulse / 3; from: 1; to: 0.3 }
                NumberAnimation { duration: Theme.pulse / 3; from: 0.3; to: 1 }
                PauseAnimation { duration: (2 - dot.index) * Theme.pulse / 6 }
            }
        }
        // qmllint enable unqualified
    }
}
