import QtQuick
import Korvi.Views // the types written in C++

// A diagram, on a ground of its own; its code when it is none or is still being written. Can be selected as one
// character, copied as its code, and asked to show itself larger.
WholePart {
    id: view

    required property string code
    property bool isOpen: false // its end has not come yet: it is shown as it is written

    readonly property bool isReady: drawing.isReady && !isOpen
    property bool showsSource: isOpen // and does so until there is something better
    property real grownHeight: 1 // a drawing grows and never shrinks, so that nothing below it jumps
    property real drawnHeight: 0 // of the largest drawing so far; 0 before the first

    signal enlargeWanted(string code)

    function sourceAt(x: real, y: real): var {
        return { kind: "diagram", text: code }
    }

    function grow(): void {
        // Half of the line that closed it was shown as code, and goes with its height.
        if (raw.visible) {
            grownHeight = Math.max(drawnHeight, raw.needed)
        } else if (isReady) {
            drawnHeight = Math.max(drawnHeight, drawing.height + 2 * Theme.diagramMargin)
            grownHeight = Math.max(grownHeight, drawnHeight)
        }
    }

    Accessible.description: code
    Accessible.name: "Диаграмма"
    Accessible.onPressAction: enlargeWanted(code)
    Accessible.role: Accessible.Graphic
    activeFocusOnTab: isReady
    implicitHeight: Math.max(1, grownHeight)

    opens: isReady
    source: `\`\`\`mermaid\n${code}\n\`\`\``

    Keys.onPressed: event => {
        const copies = event.matches(StandardKey.Copy) && !isSelected
        if (copies)
            copyWanted(code)
        event.accepted = event.accepted || copies
    }
    onCodeChanged: {
        if (!isOpen) { // another diagram
            drawnHeight = 0
            grownHeight = raw.visible ? raw.needed : 1
        }
    }
    onIsOpenChanged: if (isOpen) showsSource = true
    onIsReadyChanged: {
        if (isReady)
            showsSource = false
        grow()
    }
    onOpenWanted: enlargeWanted(code)

    Timer {
        interval: Theme.patience
        running: !drawing.isReady && !view.showsSource && view.code.length > 0

        onTriggered: view.showsSource = true
    }
    Rectangle {
        anchors.fill: parent
        border.color: Theme.line
        color: Theme.diagram
        radius: Theme.radiusCard
        visible: view.isReady

        HoverHandler {
            id: hover
        }
        DiagramItem {
            id: drawing

            anchors.centerIn: parent
            availableWidth: view.width - 2 * Theme.gap4
            code: view.isOpen ? "" : view.code
            drawingScale: Theme.textSize / 13
            height: width > 0 && implicitWidth > 0 ? implicitHeight * width / implicitWidth : 0
            isDark: Theme.dark
            objectName: "diagramDrawing"
            width: Math.min(implicitWidth, availableWidth)

            onHeightChanged: view.grow()
        }
        IconButton {
            anchors.margins: Theme.gap2
            anchors.right: parent.right
            anchors.top: parent.top
            focusPolicy: Qt.NoFocus // qmllint disable
            objectName: "copyDiagram"
            opacity: hover.hovered || hovered ? 1 : 0
            symbol: "doc.on.doc"
            text: "Копировать код"

            onClicked: view.copyWanted(view.code)
        }
    }
    Rectangle {
        id: raw

        readonly property real needed: listing.implicitHeight + 2 * Theme.gap3

        color: Theme.fallback
        height: Math.max(needed, view.grownHeight)
        radius: Theme.radiusRow
        visible: !view.isReady && (view.showsSource || drawing.isWrong || drawing.isMissed)
        width: view.width

        onNeededChanged: view.grow()
        onVisibleChanged: view.grow()

        SourceText {
            id: listing

            color: Theme.fallbackText
            objectName: "diagramSource"
            shown: raw.visible
            text: view.code
            width: parent.width - 2 * Theme.gap3
            x: Theme.gap3
            y: Theme.gap3
        }
    }
    Rectangle {
        anchors.fill: parent
        color: Theme.selection
        radius: Theme.radiusCard
        visible: view.isSelected
    }
    FocusRing {
        around: Theme.radiusCard
        objectName: "diagramRing"
        shown: view.activeFocus && (view.isSelected || !view.focusByPointer)
    }
}
