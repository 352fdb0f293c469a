import QtQuick
import Korvi.Views // the types written in C++

// A wall of what was made: pictures, a film, a tune, a document.
GuideVisual {
    id: visual

    // qmllint disable unqualified
    component Tile: GuideCard {
        id: tile

        required property string symbol
        property bool lit: false

        color: lit ? visual.wash : Theme.raise

        Symbol {
            anchors.centerIn: parent
            color: tile.lit ? visual.accent : Theme.t3
            name: tile.symbol
            size: 30 * visual.u
        }
    }
    // qmllint enable unqualified

    // A picture: a sun over hills.
    GuideCard {
        color: visual.wash
        height: 150 * visual.u
        width: 168 * visual.u
        x: 8 * visual.u
        y: 12 * visual.u

        Item {
            anchors.fill: parent
            anchors.margins: Theme.hairline
            clip: true

            Rectangle {
                color: visual.accent
                height: width
                radius: width / 2
                width: 34 * visual.u
                x: 108 * visual.u
                y: 24 * visual.u
            }
            Rectangle {
                color: Qt.alpha(visual.accent, 0.35)
                height: width
                radius: 14 * visual.u
                rotation: 45
                width: 120 * visual.u
                x: -14 * visual.u
                y: 84 * visual.u
            }
            Rectangle {
                color: Qt.alpha(visual.accent, 0.55)
                height: width
                radius: 12 * visual.u
                rotation: 45
                width: 104 * visual.u
                x: 74 * visual.u
                y: 104 * visual.u
            }
        }
    }
    Tile {
        height: 92 * visual.u
        symbol: "video"
        width: 124 * visual.u
        x: 188 * visual.u
        y: 12 * visual.u
    }
    Tile {
        height: 112 * visual.u
        lit: true
        symbol: "music.note"
        width: 124 * visual.u
        x: 188 * visual.u
        y: 116 * visual.u
    }
    Tile {
        height: 54 * visual.u
        symbol: "doc.text"
        width: 78 * visual.u
        x: 8 * visual.u
        y: 174 * visual.u
    }
    Tile {
        height: 54 * visual.u
        symbol: "photo"
        width: 78 * visual.u
        x: 98 * visual.u
        y: 174 * visual.u
    }
    // What plays.
    GuideCard {
        height: 48 * visual.u
        radius: height / 2
        width: 304 * visual.u
        x: 8 * visual.u
        y: 242 * visual.u

        Rectangle {
            anchors.verticalCenter: parent.verticalCenter
            color: visual.accent
            height: width
            radius: width / 2
            width: 30 * visual.u
            x: 9 * visual.u

            Symbol {
                anchors.centerIn: parent
                color: Theme.raise
                name: "play"
                size: 14 * visual.u
            }
        }
        GuideLine {
            anchors.verticalCenter: parent.verticalCenter
            color: Theme.line2
            height: 5 * visual.u
            width: 230 * visual.u
            x: 52 * visual.u

            GuideLine {
                color: visual.accent
                height: parent.height
                width: parent.width * 0.38
            }
        }
    }
}
