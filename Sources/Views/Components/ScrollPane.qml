import QtQuick
import QtQuick.Templates as T

// Scrolls what does not fit, with a bar that says so.
Flickable {
    id: area

    // Rows up (negative) or down; for those who have only keys.
    function scroll(rows: int): void {
        contentY = Math.max(0, Math.min(contentHeight - height, contentY + rows * Theme.rowHeight))
    }

    boundsBehavior: Flickable.StopAtBounds
    clip: true
    contentWidth: width
    interactive: contentHeight > height

    T.ScrollBar.vertical: ThinScrollBar {
        focusPolicy: Qt.NoFocus // qmllint disable
    }
}
