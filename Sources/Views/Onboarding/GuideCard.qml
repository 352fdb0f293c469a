import QtQuick

// A raised surface in a drawing.
Rectangle {
    id: card

    border.color: Theme.line2
    color: Theme.raise
    radius: Theme.radiusCard

    SoftShadow {
        around: card.radius
        z: -1
    }
}
