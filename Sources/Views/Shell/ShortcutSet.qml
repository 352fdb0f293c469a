import QtQml
import QtQuick
import "Shortcuts.js" as Shortcuts

// The shortcuts of the window, from their table.
Instantiator {
    id: set

    signal activated(id: string)

    model: Shortcuts.registered().length

    delegate: Shortcut {
        required property int index

        sequences: Shortcuts.sequences(Shortcuts.registered()[index].keys)

        onActivated: set.activated(Shortcuts.registered()[index].id) // qmllint disable unqualified
        onActivatedAmbiguously: set.activated(Shortcuts.registered()[index].id) // qmllint disable unqualified
    }
}
