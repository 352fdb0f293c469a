import QtQuick
import Korvi.Views // the types written in C++

// A project's folder with its sessions, or a session of its own.
GuideVisual {
    id: visual

    // qmllint disable unqualified
    component Session: Row {
        id: session

        required property real length // of its name
        property bool lit: false

        spacing: 10 * visual.u

        GuideBadge {
            border.color: session.lit ? "transparent" : Theme.line2
            color: session.lit ? visual.wash : Theme.raise
            size: 26 * visual.u
            symbol: "text.bubble"
            tint: session.lit ? visual.accent : Theme.t3
        }
        GuideLine {
            anchors.verticalCenter: parent.verticalCenter
            color: visual.ink
            height: 7 * visual.u
            width: session.length * visual.u
        }
    }
    // qmllint enable unqualified

    GuideCard {
        height: 176 * visual.u
        width: 250 * visual.u
        x: 8 * visual.u
        y: 14 * visual.u

        Rectangle {
            color: visual.wash
            height: 52 * visual.u
            radius: Theme.radiusRow
            width: parent.width - 24 * visual.u
            x: 12 * visual.u
            y: 12 * visual.u

            Symbol {
                anchors.verticalCenter: parent.verticalCenter
                color: visual.accent
                name: "folder"
                size: 26 * visual.u
                x: 14 * visual.u
            }
            GuideLine {
                anchors.verticalCenter: parent.verticalCenter
                color: visual.accent
                height: 8 * visual.u
                opacity: 0.75
                width: 112 * visual.u
                x: 54 * visual.u
            }
        }
        Column {
            spacing: 14 * visual.u
            x: 28 * visual.u
            y: 84 * visual.u

            Session { length: 130; lit: true }
            Session { length: 98 }
        }
    }
    GuideCard {
        height: 66 * visual.u
        radius: 20 * visual.u
        width: 220 * visual.u
        x: 92 * visual.u
        y: 214 * visual.u

        Session {
            anchors.verticalCenter: parent.verticalCenter
            length: 120
            x: 18 * visual.u
        }
    }
    GuideBadge {
        border.color: "transparent"
        color: visual.accent
        size: 44 * visual.u
        symbol: "plus"
        tint: Theme.raise
        x: 236 * visual.u
        y: 168 * visual.u
    }
}
