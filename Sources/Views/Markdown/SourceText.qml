import QtQuick
import Korvi.Views // the types written in C++

// What a formula or a diagram is written in. A long one is laid out in parts, of which only those in view exist, and
// may grow at its end.
Item {
    id: listing

    required property string text
    required property color color
    required property bool shown
    property bool wraps: true

    readonly property bool isLong: wraps && text.length > 2000

    baselineOffset: brief.baselineOffset
    height: implicitHeight
    implicitHeight: isLong ? parts.item?.implicitHeight ?? 0 : brief.implicitHeight // qmllint disable
    implicitWidth: brief.implicitWidth
    visible: shown

    // qmllint disable unqualified
    component Lines: Text {
        color: listing.color
        font.family: Theme.monoFamily
        font.pixelSize: Theme.fontCode
        textFormat: Text.PlainText
        wrapMode: listing.wraps ? Text.WrapAtWordBoundaryOrAnywhere : Text.NoWrap
    }
    // qmllint enable unqualified

    Lines {
        id: brief

        text: listing.isLong ? "" : listing.text
        width: listing.width
    }
    Loader {
        id: parts

        active: listing.isLong && listing.shown
        width: listing.width

        sourceComponent: PartColumn {
            id: column

            // qmllint disable unqualified
            delegate: Lines {
                required property string part

                text: part
            }
            estimate: CodeHeights {
                lineHeight: metrics.height
                wrapColumns: column.width / metrics.advanceWidth("0")
            }
            model: TextParts {
                text: listing.text
            }
            // qmllint enable unqualified

            FontMetrics {
                id: metrics

                font.family: Theme.monoFamily
                font.pixelSize: Theme.fontCode
            }
        }
    }
}
