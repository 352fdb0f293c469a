import QtQuick

// Text that is read, not edited. Elides or wraps only when told.
Text {
    Accessible.role: Accessible.StaticText
    Accessible.name: text
    color: Theme.t1
    font.family: Theme.family
    font.pixelSize: Theme.fontBody
    lineHeight: Theme.leading(font.pixelSize)
    lineHeightMode: Text.FixedHeight
    renderType: Text.NativeRendering
    textFormat: Text.PlainText
    verticalAlignment: Text.AlignVCenter
}
