import QtQuick
import Korvi.Views

// Text that can be selected and copied, and may grow at its end without being laid out anew.
TextEdit {
    id: edit

    property alias content: growing.text

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
    selectionColor: Theme.halo
    textFormat: TextEdit.PlainText
    wrapMode: TextEdit.Wrap

    FontMetrics {
        id: metrics

        font: edit.font
    }
    GrowingText {
        id: growing

        document: edit.textDocument
        lineDistance: Math.max(0, Theme.leading(edit.font.pixelSize) - metrics.height)
    }
}
