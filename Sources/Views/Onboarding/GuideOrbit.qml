import QtQuick

// The mark in the middle, and round it everything one brings along.
GuideVisual {
    id: visual

    readonly property point middle: Qt.point(160 * u, 150 * u)

    // qmllint disable unqualified
    component Ring: Rectangle {
        required property real reach // its radius in units

        border.color: Qt.alpha(visual.accent, 0.28)
        border.width: Theme.hairline
        color: "transparent"
        height: width
        radius: width / 2
        width: reach * 2 * visual.u
        x: visual.middle.x - width / 2
        y: visual.middle.y - height / 2
    }
    component Satellite: GuideBadge {
        required property real reach
        required property real degrees // clockwise from the top

        readonly property real angle: (degrees - 90) * Math.PI / 180

        x: visual.middle.x + Math.cos(angle) * reach * visual.u - width / 2
        y: visual.middle.y + Math.sin(angle) * reach * visual.u - height / 2
    }
    // qmllint enable unqualified

    Ring { reach: 78 }
    Ring { reach: 134 }
    BrandMark {
        size: 68 * visual.u
        x: visual.middle.x - width / 2
        y: visual.middle.y - height / 2
    }
    Satellite { degrees: 20; reach: 78; size: 44 * visual.u; symbol: "text.bubble"; tint: visual.accent }
    Satellite { degrees: 140; reach: 78; size: 38 * visual.u; symbol: "mic" }
    Satellite { degrees: 262; reach: 78; size: 40 * visual.u; symbol: "paperclip" }
    Satellite { degrees: 320; reach: 134; size: 40 * visual.u; symbol: "photo" }
    Satellite { degrees: 62; reach: 134; size: 36 * visual.u; symbol: "folder" }
    Satellite { degrees: 118; reach: 134; size: 42 * visual.u; symbol: "terminal"; tint: visual.accent }
    Satellite { degrees: 215; reach: 134; size: 44 * visual.u; symbol: "globe" }
}
