import QtQuick

// A soft shadow under a rounded surface, laid in a few faint layers so that it needs no effect shader.
Item {
    id: shadow

    required property real around // radius of the surface

    Accessible.ignored: true
    anchors.fill: parent

    Repeater {
        model: 8

        // qmllint disable unqualified
        Rectangle {
            required property int index

            readonly property real spread: (index + 1) * (index + 2) / 4 // denser near the surface

            color: Theme.shadow
            height: shadow.height + spread * 2
            radius: shadow.around + spread
            width: shadow.width + spread * 2
            x: -spread
            y: -spread + Theme.gap2
        }
        // qmllint enable unqualified
    }
}
