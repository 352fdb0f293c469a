import QtQuick
import Korvi.Views // the types written in C++

// A way with steps, and a word of the user that turns it.
GuideVisual {
    id: visual

    // qmllint disable unqualified
    component Stop: Rectangle {
        id: stop

        property string symbol
        property bool reached: false

        border.color: reached ? visual.accent : Theme.line2
        border.width: Math.max(1, 2 * visual.u)
        color: reached ? visual.wash : Theme.raise
        height: width
        radius: width / 2
        width: 40 * visual.u

        Symbol {
            anchors.centerIn: parent
            color: stop.reached ? visual.accent : Theme.t3
            name: stop.symbol
            size: 18 * visual.u
        }
    }
    component Way: Rectangle {
        color: Theme.line2
        radius: width / 2
        width: Math.max(1, 3 * visual.u)
    }
    // qmllint enable unqualified

    Way {
        color: visual.accent
        height: 196 * visual.u
        x: 38 * visual.u
        y: 40 * visual.u
    }
    Way {
        height: 60 * visual.u
        x: 38 * visual.u
        y: 210 * visual.u
    }
    Stop { reached: true; symbol: "checkmark"; x: 20 * visual.u; y: 14 * visual.u }
    Stop { reached: true; symbol: "hand.raised"; x: 20 * visual.u; y: 110 * visual.u }
    Stop { symbol: "arrow.triangle.branch"; x: 20 * visual.u; y: 206 * visual.u + 34 * visual.u }

    Column {
        spacing: 9 * visual.u
        x: 84 * visual.u
        y: 22 * visual.u

        GuideLine { color: visual.ink; height: 7 * visual.u; width: 190 * visual.u }
        GuideLine { color: visual.ink; height: 7 * visual.u; width: 130 * visual.u }
    }
    Rectangle {
        color: visual.wash
        height: 72 * visual.u
        radius: 18 * visual.u
        width: 220 * visual.u
        x: 84 * visual.u
        y: 94 * visual.u

        Column {
            anchors.verticalCenter: parent.verticalCenter
            spacing: 8 * visual.u
            x: 20 * visual.u

            GuideLine { color: visual.accent; height: 7 * visual.u; opacity: 0.75; width: 176 * visual.u }
            GuideLine { color: visual.accent; height: 7 * visual.u; opacity: 0.75; width: 118 * visual.u }
        }
    }
    GuideCard {
        height: 84 * visual.u
        width: 220 * visual.u
        x: 84 * visual.u
        y: 202 * visual.u

        Column {
            anchors.verticalCenter: parent.verticalCenter
            spacing: 9 * visual.u
            x: 20 * visual.u

            GuideLine { color: visual.ink; height: 7 * visual.u; width: 150 * visual.u }
            GuideLine { color: visual.ink; height: 7 * visual.u; width: 180 * visual.u }
            GuideLine { color: Theme.ok; height: 7 * visual.u; opacity: 0.8; width: 96 * visual.u }
        }
    }
}
