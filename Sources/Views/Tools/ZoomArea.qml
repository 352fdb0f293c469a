import QtQuick

// Shows something as a whole at first. The wheel with Ctrl, a click or its owner enlarge it; then it can be moved.
Flickable {
    id: area

    required property size natural // pixels, at a scale of 1; empty until it is known
    property real fullScale: 1 // what a click leads to
    property real largestFit: 1 // what is small is made no larger than that to fill the window
    property size margins: Qt.size(0, 0) // around what fits in

    property real zoom: 0 // the scale; 0 while it fits in
    readonly property bool isZoomed: zoom > 0
    readonly property real fitting: natural.width > 0 && natural.height > 0
        ? Math.min(largestFit, (width - margins.width * 2) / natural.width, (height - margins.height * 2) / natural.height) : 1
    readonly property real shownScale: isZoomed ? zoom : fitting
    readonly property real largest: Math.max(4, fullScale, fitting)
    readonly property bool canZoom: natural.width > 0 && (isZoomed || fitting < fullScale)
    // Where it stands in the content.
    readonly property rect place: {
        const wide = Math.round(natural.width * shownScale)
        const high = Math.round(natural.height * shownScale)
        return Qt.rect(Math.round((contentWidth - wide) / 2), Math.round((contentHeight - high) / 2), wide, high)
    }

    signal missed // a click beside it

    // What is seen at that place of the view stays there.
    function zoomTo(scale: real, x: real, y: real): void {
        const across = (contentX + x - place.x) / Math.max(1, place.width)
        const down = (contentY + y - place.y) / Math.max(1, place.height)
        const wanted = Math.min(largest, scale)
        zoom = wanted > fitting * 1.01 ? wanted : 0
        contentX = within(place.x + across * place.width - x, contentWidth - width)
        contentY = within(place.y + down * place.height - y, contentHeight - height)
    }

    function zoomBy(factor: real): void {
        zoomTo(shownScale * factor, width / 2, height / 2)
    }

    function toggle(x: real, y: real): void {
        if (canZoom)
            zoomTo(isZoomed ? 0 : fullScale, x, y)
    }

    // Whether there was anything to move.
    function moveBy(x: real, y: real): bool {
        const to = Qt.point(within(contentX + x, contentWidth - width), within(contentY + y, contentHeight - height))
        contentX = to.x
        contentY = to.y
        return isZoomed
    }

    function within(at: real, longest: real): real {
        return Math.round(Math.max(0, Math.min(longest, at)))
    }

    boundsBehavior: Flickable.StopAtBounds
    clip: true
    contentHeight: Math.max(height, Math.round(natural.height * shownScale))
    contentWidth: Math.max(width, Math.round(natural.width * shownScale))
    interactive: contentWidth > width || contentHeight > height

    TapHandler {
        onTapped: point => {
            const at = point.position
            const isInside = at.x >= area.place.x && at.x < area.place.x + area.place.width && at.y >= area.place.y
                && at.y < area.place.y + area.place.height
            if (isInside)
                area.toggle(at.x - area.contentX, at.y - area.contentY)
            else
                area.missed()
        }
    }
    WheelHandler {
        acceptedModifiers: Qt.ControlModifier
        target: null

        onWheel: event => area.zoomTo(area.shownScale * Math.pow(1.25, event.angleDelta.y / 120), event.x - area.contentX, event.y - area.contentY)
    }
}
