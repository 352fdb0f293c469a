import QtQml
import QtQuick
import "Shortcuts.js" as Shortcuts

// The shortcuts of the window, from their table.
Instantiator {
    id: set

    signal activated(id: string)

    model: Shortcuts.registered()

    delegate: Shortcut {
        required property var modelData

        sequences: Shortcuts.sequences(modelData.keys)

        onActivated: set.activated(modelData.id) // qmllint disable unqualified
        onActivatedAmbiguously: set.activated(modelData.id) // qmllint disable unqualified
    }
}
