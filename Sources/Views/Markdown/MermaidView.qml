import QtQuick
import Korvi.Views // the types written in C++

// A diagram, on a ground of its own; its code when it is none or is still being written. Can be selected as one
// character, copied as its code, and asked to show itself larger.
FocusScope {
    id: view

    required property string code
    property bool isOpen: false // its end has not come yet: it is shown as it is written
    property bool persistentSelection: false

    readonly property bool isReady: drawing.isReady && !isOpen
    readonly property int length: 1 // selectable characters
    readonly property string source: `\`\`\`mermaid\n${code}\n\`\`\``
    readonly property string selectedText: isSelected ? source : ""

    property bool isSelected: false
    property bool showsSource: isOpen // and does so until there is something better
    property real grownHeight: 1 // grows and never shrinks, so that nothing below it jumps

    signal caretMoved(real y, real height)
    signal copyWanted(string text)
    signal enlargeWanted(string code)

    function select(from: int, to: int): void {
        isSelected = from !== to
    }

    function selectAll(): void {
        isSelected = true
    }

    function deselect(): void {
        isSelected = false
    }

    function positionAt(x: real, y: real): int {
        return y < height / 2 ? 0 : 1
    }

    function positionToRectangle(position: int): rect {
        return Qt.rect(position > 0 ? width : 0, 0, 0, height)
    }

    function sourceAt(x: real, y: real): var {
        return { kind: "diagram", text: code }
    }

    function takeFocus(): void {
        forceActiveFocus(Qt.OtherFocusReason)
    }

    function takeCaret(): void {
        takeFocus()
        isSelected = true
        caretMoved(0, height)
    }

    function grow(): void {
        const wanted = raw.visible ? raw.needed : isReady ? drawing.height + 2 * Theme.diagramMargin : 1
        grownHeight = Math.max(grownHeight, wanted)
    }

    Accessible.description: code
    Accessible.name: "Диаграмма"
    Accessible.onPressAction: enlargeWanted(code)
    Accessible.role: Accessible.Graphic
    implicitHeight: Math.max(1, grownHeight)

    Keys.onPressed: event => {
        const copies = event.matches(StandardKey.Copy) && !persistentSelection
        const opens = [Qt.Key_Return, Qt.Key_Enter, Qt.Key_Space].includes(event.key) && isReady
        event.accepted = copies || opens
        if (copies)
            copyWanted(code)
        else if (opens)
            enlargeWanted(code)
    }
    onActiveFocusChanged: {
        if (!activeFocus && !persistentSelection)
            isSelected = false
    }
    onCodeChanged: {
        if (!isOpen)
            grownHeight = raw.visible ? raw.needed : 1 // another diagram
    }
    onIsOpenChanged: {
        if (isOpen)
            showsSource = true
    }
    onIsReadyChanged: {
        if (isReady)
            showsSource = false
        grow()
    }

    Timer {
        interval: Theme.patience
        running: !drawing.isReady && !view.showsSource && view.code.length > 0

        onTriggered: view.showsSource = true
    }
    Rectangle {
        anchors.fill: parent
        color: Theme.diagram
        radius: Theme.radiusCard
        visible: view.isReady

        HoverHandler {
            id: hover
        }
        TapHandler {
            acceptedButtons: Qt.LeftButton

            onTapped: {
                view.takeFocus()
                view.enlargeWanted(view.code)
            }
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
        shown: view.activeFocus && view.isSelected
    }
}
