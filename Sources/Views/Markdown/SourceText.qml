import QtQuick
import Korvi.Views // the types written in C++

// What a formula or a diagram is written in. A long one grows at its end without being laid out anew.
Item {
    id: listing

    required property string text
    required property color color
    required property bool shown
    property bool wraps: true

    readonly property bool isLong: wraps && text.length > 2000

    baselineOffset: brief.baselineOffset
    height: implicitHeight
    implicitHeight: isLong ? grown.item?.implicitHeight ?? 0 : brief.implicitHeight // qmllint disable
    implicitWidth: brief.implicitWidth
    visible: shown

    Text {
        id: brief

        color: listing.color
        font.family: Theme.monoFamily
        font.pixelSize: Theme.fontCode
        text: listing.isLong ? "" : listing.text
        textFormat: Text.PlainText
        width: listing.width
        wrapMode: listing.wraps ? Text.WrapAtWordBoundaryOrAnywhere : Text.NoWrap
    }
    Loader {
        id: grown

        active: listing.isLong && listing.shown
        width: listing.width

        sourceComponent: TextEdit {
            id: edit

            activeFocusOnPress: false
            color: listing.color
            enabled: false
            font.family: Theme.monoFamily
            font.pixelSize: Theme.fontCode
            readOnly: true
            textFormat: TextEdit.PlainText
            wrapMode: TextEdit.WrapAtWordBoundaryOrAnywhere

            GrowingText {
                document: edit.textDocument
                text: listing.text
            }
        }
    }
}
