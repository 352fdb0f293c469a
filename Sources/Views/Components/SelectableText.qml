import QtQuick
import Korvi.Views // the types written in C++

// Text that can be selected and copied, and may grow at its end without being laid out anew.
TextEdit {
    id: edit

    property alias content: growing.text
    readonly property real lineDistance: Math.max(0, Theme.leading(font.pixelSize) - metrics.height)

    Accessible.name: content
    Accessible.role: Accessible.StaticText
    activeFocusOnPress: true
    color: Theme.t1
    font.family: Theme.family
    font.pixelSize: Theme.fontBody
    readOnly: true
    renderType: Text.NativeRendering
    selectByMouse: true
    selectedTextColor: color
    selectionColor: Theme.selection
    textFormat: TextEdit.PlainText
    wrapMode: TextEdit.Wrap

    FontMetrics {
        id: metrics

        font: edit.font
    }
    GrowingText {
        id: growing

        document: edit.textDocument
    }
    LineSpacing {
        distance: edit.lineDistance
        document: edit.textDocument
    }
}
