import QtQuick
import Korvi.Views // the types written in C++

// The steps of a piece of work, done one after the other, and the commands beside them.
GuideVisual {
    id: visual

    readonly property var steps: [
        { symbol: "globe", width: 128, state: "done" },
        { symbol: "doc.text", width: 152, state: "done" },
        { symbol: "terminal", width: 110, state: "running" },
        { symbol: "checklist", width: 138, state: "waiting" },
    ]

    GuideCard {
        height: 184 * visual.u
        width: 280 * visual.u
        x: 8 * visual.u
        y: 12 * visual.u

        Column {
            anchors.verticalCenter: parent.verticalCenter
            spacing: 12 * visual.u
            x: 18 * visual.u

            Repeater {
                model: visual.steps

                // qmllint disable unqualified
                Row {
                    id: step

                    required property var modelData

                    readonly property bool waiting: modelData.state === "waiting"

                    opacity: waiting ? 0.5 : 1
                    spacing: 12 * visual.u

                    Rectangle {
                        border.color: step.modelData.state === "done" ? "transparent" : Theme.line2
                        color: step.modelData.state === "done" ? visual.wash : "transparent"
                        height: width
                        radius: width / 2
                        width: 28 * visual.u

                        Symbol {
                            anchors.centerIn: parent
                            color: step.waiting ? Theme.t3 : visual.accent
                            name: step.modelData.symbol
                            size: 14 * visual.u
                        }
                    }
                    GuideLine {
                        anchors.verticalCenter: parent.verticalCenter
                        color: visual.ink
                        height: 7 * visual.u
                        width: step.modelData.width * visual.u
                    }
                    Symbol {
                        anchors.verticalCenter: parent.verticalCenter
                        color: Theme.ok
                        name: "checkmark"
                        size: 15 * visual.u
                        visible: step.modelData.state === "done"
                    }
                    Rectangle {
                        anchors.verticalCenter: parent.verticalCenter
                        color: visual.accent
                        height: width
                        radius: width / 2
                        visible: step.modelData.state === "running"
                        width: 8 * visual.u
                    }
                }
                // qmllint enable unqualified
            }
        }
    }
    GuideCard {
        color: Theme.code
        height: 122 * visual.u
        width: 220 * visual.u
        x: 92 * visual.u
        y: 166 * visual.u

        Column {
            spacing: 11 * visual.u
            x: 18 * visual.u
            y: 20 * visual.u

            Repeater {
                model: [96, 150]

                // qmllint disable unqualified
                Row {
                    id: command

                    required property real modelData

                    spacing: 7 * visual.u

                    Symbol {
                        anchors.verticalCenter: parent.verticalCenter
                        color: visual.accent
                        name: "chevron.right"
                        size: 11 * visual.u
                    }
                    GuideLine {
                        anchors.verticalCenter: parent.verticalCenter
                        color: visual.ink
                        height: 6 * visual.u
                        width: command.modelData * visual.u
                    }
                }
                // qmllint enable unqualified
            }
            GuideLine { color: Theme.ok; height: 6 * visual.u; opacity: 0.8; width: 124 * visual.u }
            Rectangle { color: Theme.t2; height: 14 * visual.u; width: 8 * visual.u }
        }
    }
}
