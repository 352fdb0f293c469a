import QtQuick

// The keys of a shortcut ("Ctrl+Shift+N"), each as a small key.
Row {
    id: caps

    required property string keys

    Accessible.name: keys
    Accessible.role: Accessible.StaticText
    spacing: Theme.gap1

    Repeater {
        model: caps.keys.split("+")

        // qmllint disable unqualified
        Rectangle {
            id: cap

            required property string modelData

            border.color: Theme.line2
            color: Theme.sunk
            height: Theme.px(22)
            radius: Theme.gap1
            width: Math.max(height, label.implicitWidth + Theme.gap2 * 2)

            Label {
                id: label

                Accessible.ignored: true
                anchors.centerIn: parent
                color: Theme.t2
                font.pixelSize: Theme.fontSmall
                text: cap.modelData
            }
        }
        // qmllint enable unqualified
    }
}
