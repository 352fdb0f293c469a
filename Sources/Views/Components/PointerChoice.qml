import QtQuick

// Makes the row under a pointer that moves the current one, so that a list of choices marks only one. A pointer that
// merely lies there when the list comes up, or rows pass under it, changes nothing.
HoverHandler {
    id: pointer

    required property ListView list
    property var last: null // where it was seen, in the window

    onHoveredChanged: if (!hovered) last = null
    onPointChanged: {
        if (!hovered)
            return
        const at = point.scenePosition
        if (last && (at.x !== last.x || at.y !== last.y)) {
            const row = list.indexAt(list.width / 2, point.position.y + list.contentY)
            if (row >= 0)
                list.currentIndex = row
        }
        last = Qt.point(at.x, at.y)
    }
}
