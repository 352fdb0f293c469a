import QtQuick

// Where in the guide one is, and the buttons.
Item {
    id: foot

    required property color accent
    required property int count
    required property int step
    default property alias buttons: row.data

    implicitHeight: row.height + Theme.gap6 + Theme.gap2

    Row {
        Accessible.name: "Шаг %1 из %2".arg(foot.step + 1).arg(foot.count)
        Accessible.role: Accessible.Indicator
        anchors.verticalCenter: row.verticalCenter
        spacing: Theme.gap1 + 2
        x: Theme.gap8

        Repeater {
            model: foot.count

            // qmllint disable unqualified
            Rectangle {
                required property int index

                readonly property bool current: index === foot.step

                color: current ? foot.accent : Theme.line2
                height: Theme.px(6)
                radius: height / 2
                width: current ? Theme.px(20) : height

                Behavior on width { NumberAnimation { duration: Theme.calm } }
            }
            // qmllint enable unqualified
        }
    }
    Row {
        id: row

        anchors.right: parent.right
        anchors.rightMargin: Theme.gap8
        spacing: Theme.gap2
        y: Theme.gap2
    }
}
