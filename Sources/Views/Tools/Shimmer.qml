import QtQuick
import Korvi.Views // the types written in C++

// A surface over which a soft light passes while something is made; still when the desktop asks for less motion, and at
// rest when nobody sees it.
Rectangle {
    id: surface

    property color unlit: Theme.sunk
    property color lit: Theme.line
    property real phase: -reach // where the light is, 0 at the left edge, 1 at the right
    readonly property real reach: 0.35
    readonly property alias moves: pass.running

    function stop(at: real): real {
        return Math.max(0, Math.min(1, at))
    }

    function tone(at: real): color {
        const light = Math.max(0, 1 - Math.abs(stop(at) - phase) / reach)
        return Qt.rgba(unlit.r + (lit.r - unlit.r) * light, unlit.g + (lit.g - unlit.g) * light,
            unlit.b + (lit.b - unlit.b) * light, 1)
    }

    Accessible.ignored: true
    color: unlit
    gradient: Theme.reducedMotion ? null : light

    Gradient {
        id: light

        orientation: Gradient.Horizontal

        GradientStop { color: surface.tone(0); position: 0 }
        GradientStop { color: surface.tone(surface.phase - surface.reach); position: surface.stop(surface.phase - surface.reach) }
        GradientStop { color: surface.tone(surface.phase); position: surface.stop(surface.phase) }
        GradientStop { color: surface.tone(surface.phase + surface.reach); position: surface.stop(surface.phase + surface.reach) }
        GradientStop { color: surface.tone(1); position: 1 }
    }
    NumberAnimation on phase {
        id: pass

        duration: Theme.pulse * 2
        easing.type: Easing.InOutSine
        from: -surface.reach
        loops: Animation.Infinite
        running: watch.isSeen && !Theme.reducedMotion
        to: 1 + surface.reach
    }
    InView {
        id: watch

        anchors.fill: parent
    }
}
