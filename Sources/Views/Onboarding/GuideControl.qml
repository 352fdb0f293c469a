import QtQuick
import Korvi.Views // the types written in C++

// A voice that becomes text in somebody else's window.
GuideVisual {
    id: visual

    readonly property var loudness: [10, 22, 14, 34, 52, 30, 44, 62, 38, 54, 26, 40, 18, 28, 12]

    GuideCard {
        height: 168 * visual.u
        width: 272 * visual.u
        x: 24 * visual.u
        y: 16 * visual.u

        Row {
            spacing: 5 * visual.u
            x: 14 * visual.u
            y: 13 * visual.u

            Repeater {
                model: 3

                // qmllint disable unqualified
                Rectangle {
                    color: Theme.line2
                    height: width
                    radius: width / 2
                    width: 8 * visual.u
                }
                // qmllint enable unqualified
            }
        }
        Column {
            spacing: 10 * visual.u
            x: 20 * visual.u
            y: 44 * visual.u

            GuideLine { color: visual.ink; height: 7 * visual.u; width: 220 * visual.u }
            GuideLine { color: visual.ink; height: 7 * visual.u; width: 232 * visual.u }
            Row {
                spacing: 5 * visual.u

                GuideLine { color: visual.accent; height: 7 * visual.u; width: 118 * visual.u }
                Rectangle {
                    anchors.verticalCenter: parent.verticalCenter
                    color: visual.accent
                    height: 16 * visual.u
                    width: Math.max(1, 2 * visual.u)
                }
            }
        }
    }
    GuideCard {
        border.color: Qt.alpha(visual.accent, 0.4)
        height: 92 * visual.u
        radius: height / 2
        width: 256 * visual.u
        x: 32 * visual.u
        y: 158 * visual.u + 30 * visual.u

        Rectangle {
            anchors.verticalCenter: parent.verticalCenter
            color: visual.accent
            height: width
            radius: width / 2
            width: 60 * visual.u
            x: 16 * visual.u

            Symbol {
                anchors.centerIn: parent
                color: Theme.raise
                name: "mic"
                size: 28 * visual.u
            }
        }
        Row {
            anchors.verticalCenter: parent.verticalCenter
            spacing: 4.5 * visual.u
            x: 94 * visual.u

            Repeater {
                model: visual.loudness

                // qmllint disable unqualified
                Rectangle {
                    required property real modelData

                    anchors.verticalCenter: parent.verticalCenter
                    color: visual.accent
                    height: modelData * visual.u
                    opacity: 0.35 + modelData / 100
                    radius: width / 2
                    width: 5 * visual.u
                }
                // qmllint enable unqualified
            }
        }
    }
}
