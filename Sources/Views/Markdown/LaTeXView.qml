import QtQuick
import Korvi.Views // the types written in C++

// A formula: one of its own, in the middle of the column, or a small one that stands among words with its baseline on
// theirs. Can be selected as one character, and copied as the TeX that it was written in, which is shown until it is
// laid out, and for good when it cannot be.
WholePart {
    id: view

    required property string formula
    property bool isBlock: true
    property bool isOpen: false // its end has not come yet: it is shown as it is written
    property color color: Theme.t1
    property real fontSize: isBlock ? Theme.fontFormula : Theme.fontInlineFormula

    readonly property bool isReady: drawing.isReady && !isOpen
    property bool showsSource: isOpen // and does so until there is something better
    // A wide one is made smaller, but only as far as it can still be read; then it scrolls.
    readonly property real fit: isBlock && width > 0 && drawing.ems * fontSize > width
        ? Math.max(Theme.leastFormulaFit, width / (drawing.ems * fontSize)) : 1

    function positionAt(x: real, y: real): int {
        if (y < 0 || y > height)
            return y < 0 ? 0 : 1
        return x < width / 2 ? 0 : 1
    }

    function positionToRectangle(position: int): rect {
        return Qt.rect(position > 0 ? strip.x + strip.width : strip.x, 0, 0, height)
    }

    function sourceAt(x: real, y: real): var {
        return { kind: "formula", text: formula }
    }

    Accessible.name: source
    Accessible.role: Accessible.StaticText
    baselineOffset: isReady ? strip.y + drawing.baselineOffset : raw.visible ? raw.y + raw.baselineOffset : implicitHeight
    implicitHeight: {
        if (raw.visible)
            return isBlock ? Math.max(Theme.pendingFormulaHeight, raw.height) : raw.height
        if (!isBlock)
            return isReady ? drawing.implicitHeight : Theme.leading(Theme.fontBody)
        return drawing.pageHeight > 10 ? drawing.pageHeight + 8 : Theme.pendingFormulaHeight
    }
    implicitWidth: raw.visible ? raw.implicitWidth : drawing.implicitWidth
    source: isBlock ? `$$${formula}$$` : `$${formula}$`

    onIsOpenChanged: {
        if (isOpen)
            showsSource = true
    }
    onIsReadyChanged: {
        if (isReady)
            showsSource = false
    }

    // Long enough to see that nothing is there: the source is better than that.
    Timer {
        interval: Theme.patience
        running: !drawing.isReady && !view.showsSource

        onTriggered: view.showsSource = true
    }
    Rectangle {
        anchors.fill: raw.visible ? raw : strip
        anchors.margins: view.isBlock ? -Theme.gap1 : 0
        color: Theme.selection
        radius: view.isBlock ? Theme.gap1 : 0
        visible: view.isSelected
    }
    Item {
        id: strip

        readonly property real hidden: Math.max(0, drawing.implicitWidth - view.width - 1) // it is rounded up

        clip: hidden > 0 && view.isBlock
        height: drawing.implicitHeight
        visible: view.isReady
        width: view.isBlock ? Math.min(drawing.implicitWidth, view.width) : drawing.implicitWidth
        x: view.isBlock ? Math.round((view.width - width) / 2) : 0
        y: view.isBlock ? Math.round((view.implicitHeight - height) / 2) : 0

        FormulaItem {
            id: drawing

            color: view.color
            errorColor: Theme.err
            fontSize: view.fontSize * view.fit
            formula: view.isOpen ? "" : view.formula
            height: implicitHeight
            isBlock: view.isBlock
            objectName: "formulaDrawing"
            width: implicitWidth
            x: -Math.min(bar.position * implicitWidth, strip.hidden)
        }
    }
    ThinScrollBar {
        id: bar

        anchors.left: parent.left
        anchors.right: parent.right
        anchors.top: strip.bottom
        focusPolicy: Qt.NoFocus // qmllint disable
        objectName: "formulaBar"
        orientation: Qt.Horizontal
        size: strip.hidden > 0 && view.isBlock && view.isReady ? view.width / drawing.implicitWidth : 1
    }
    WheelHandler {
        acceptedDevices: PointerDevice.Mouse | PointerDevice.TouchPad
        enabled: bar.visible
        orientation: Qt.Horizontal
        target: null

        onWheel: event => {
            const moved = bar.position - event.angleDelta.x / 120 * Theme.rowHeight / drawing.implicitWidth
            bar.position = Math.max(0, Math.min(1 - bar.size, moved))
        }
    }
    SourceText {
        id: raw

        color: drawing.isWrong ? Theme.err : Theme.t2
        objectName: "formulaSource"
        shown: !view.isReady && (view.showsSource || drawing.isWrong || drawing.isMissed)
        text: view.isOpen && view.isBlock ? "$$" + view.formula : view.source // so that it grows at its end
        width: view.isBlock ? view.width : implicitWidth
        wraps: view.isBlock
        y: view.isBlock ? Math.round((view.implicitHeight - height) / 2) : 0
    }
}
