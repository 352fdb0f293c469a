import QtQuick
import QtQuick.Templates as T
import Korvi.Views // the types written in C++

// What may be wider than there is room for scrolls sideways in it, by itself; up and down it stays with what is around.
SidewaysScroll {
    id: scroll

    property real wanted: 0 // width of what is in it
    property var kept: ({}) // `sideways`: how far it is scrolled, for when it is made again
    default property alias content: area.flickableData

    readonly property real contentWidth: area.contentWidth
    readonly property bool overflows: area.contentWidth > area.width

    // Scrolls no more than it takes to see that place with so much on both sides of it.
    function reveal(x: real, margin: real, seen: real): void {
        if (x - margin < area.contentX)
            scrollBy(x - margin - area.contentX)
        else if (x + margin > area.contentX + seen)
            scrollBy(x + margin - area.contentX - seen)
    }

    flickable: area

    Component.onCompleted: scrollBy(kept.sideways ?? 0)

    Flickable {
        id: area

        anchors.fill: parent
        boundsBehavior: Flickable.StopAtBounds
        clip: scroll.overflows
        contentHeight: height
        contentWidth: Math.max(width, scroll.wanted)
        interactive: false
        objectName: "sidewaysArea"

        T.ScrollBar.horizontal: ThinScrollBar {
            focusPolicy: Qt.NoFocus // qmllint disable
        }

        onContentWidthChanged: scroll.scrollBy(0)
        onContentXChanged: scroll.kept.sideways = contentX
    }
}
