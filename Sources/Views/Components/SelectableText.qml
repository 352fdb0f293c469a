import QtQuick
import Korvi.Views // the types written in C++

// Plain text that can be selected and copied, and may grow at its end without being laid out anew.
ReadingText {
    id: edit

    property alias content: growing.text
    // Lines are whole pixels.
    readonly property real lineDistance: Math.max(0, Theme.leading(font.pixelSize) - Math.ceil(metrics.height))

    Accessible.name: content

    FontMetrics {
        id: metrics

        font: edit.font
    }
    GrowingText {
        id: growing

        document: edit.textDocument

        onAboutToGrow: edit.keepSelection()
        onGrown: edit.restoreSelection()
    }
    LineSpacing {
        distance: edit.lineDistance
        document: edit.textDocument
    }
}
