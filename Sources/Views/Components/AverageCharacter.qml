import QtQuick

// How wide a character of ordinary text is, to estimate heights by.
FontMetrics {
    readonly property string sample: "Обычный русский текст, по которому меряют ширину."
    readonly property real width: advanceWidth(sample) / sample.length

    font.family: Theme.family
    font.pixelSize: Theme.fontBody
}
