import QtQuick
import Korvi.Views // the types written in C++

// A question, its answer, and the modes above the composer.
GuideVisual {
    id: visual

    // qmllint disable unqualified
    component Chip: Rectangle {
        id: chip

        required property string symbol
        required property string text
        property bool lit: false

        border.color: lit ? "transparent" : Theme.line2
        color: lit ? visual.wash : Theme.raise
        height: 26 * visual.u
        radius: height / 2
        width: words.implicitWidth + 34 * visual.u

        Symbol {
            anchors.verticalCenter: parent.verticalCenter
            color: chip.lit ? visual.accent : Theme.t2
            name: chip.symbol
            size: 13 * visual.u
            x: 9 * visual.u
        }
        Label {
            id: words

            anchors.verticalCenter: parent.verticalCenter
            color: chip.lit ? visual.accent : Theme.t2
            font.pixelSize: Math.max(7, Math.round(11 * visual.u))
            text: chip.text
            x: 26 * visual.u
        }
    }
    // qmllint enable unqualified

    Rectangle {
        color: visual.wash
        height: 44 * visual.u
        radius: 16 * visual.u
        width: 186 * visual.u
        x: 126 * visual.u
        y: 18 * visual.u

        Column {
            anchors.centerIn: parent
            spacing: 7 * visual.u

            GuideLine { color: visual.accent; height: 6 * visual.u; opacity: 0.75; width: 150 * visual.u }
            GuideLine { color: visual.accent; height: 6 * visual.u; opacity: 0.75; width: 96 * visual.u }
        }
    }
    Column {
        spacing: 9 * visual.u
        x: 8 * visual.u
        y: 88 * visual.u

        GuideLine { color: visual.ink; height: 6 * visual.u; width: 250 * visual.u }
        GuideLine { color: visual.ink; height: 6 * visual.u; width: 276 * visual.u }
        GuideLine { color: visual.ink; height: 6 * visual.u; width: 214 * visual.u }
        Row {
            spacing: 6 * visual.u
            topPadding: 4 * visual.u

            GuideBadge { size: 22 * visual.u; symbol: "globe"; tint: visual.accent }
            GuideBadge { size: 22 * visual.u; symbol: "doc.text" }
            GuideBadge { size: 22 * visual.u; symbol: "photo" }
        }
    }
    Row {
        spacing: 6 * visual.u
        x: 8 * visual.u
        y: 190 * visual.u

        Chip { lit: true; symbol: "magnifyingglass"; text: "Поиск" }
        Chip { symbol: "photo"; text: "Изображение" }
        Chip { symbol: "graduationcap"; text: "Учёба" }
    }
    GuideCard {
        height: 62 * visual.u
        radius: 20 * visual.u
        width: 312 * visual.u
        x: 4 * visual.u
        y: 226 * visual.u

        GuideLine {
            anchors.verticalCenter: parent.verticalCenter
            color: visual.ink
            height: 6 * visual.u
            width: 130 * visual.u
            x: 18 * visual.u
        }
        Rectangle {
            anchors.right: parent.right
            anchors.rightMargin: 14 * visual.u
            anchors.verticalCenter: parent.verticalCenter
            color: visual.accent
            height: width
            radius: width / 2
            width: 32 * visual.u

            Symbol {
                anchors.centerIn: parent
                color: Theme.raise
                name: "arrow.up"
                size: 16 * visual.u
            }
        }
    }
}
