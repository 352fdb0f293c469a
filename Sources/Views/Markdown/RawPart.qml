import QtQuick

// A part of an answer as plain text in a typewriter's letters: what has no view of its own.
SelectableText {
    required property int index

    font.family: Theme.monoFamily
    font.pixelSize: Theme.fontCode
}
