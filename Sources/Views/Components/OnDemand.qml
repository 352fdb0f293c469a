import QtQuick
import QtQuick.Templates as T

// A dialog of this module that is loaded when it is first asked for and forgotten when it is closed, so that a start
// pays nothing for it. Its signals are heard through `Connections { target: onDemand.item }`.
Item {
    id: onDemand

    required property url source
    property T.Popup item: null
    property bool leaving: false
    property var next: null // what to open when the one that is leaving has gone

    // While it is open, opening it again does nothing.
    function open(properties: var): void {
        if (item) {
            if (leaving)
                next = properties
            return
        }
        const component = Qt.createComponent(source)
        if (component.status === Component.Error) {
            console.warn(component.errorString())
            return
        }
        item = component.createObject(onDemand, properties) as T.Popup
        item.open()
    }

    function toggle(properties: var): void {
        if (item)
            close()
        else
            open(properties)
    }

    function close(): void {
        if (item)
            item.close()
    }

    Connections {
        function onAboutToHide() {
            onDemand.leaving = true
        }
        function onClosed() {
            const closed = onDemand.item
            const next = onDemand.next
            onDemand.item = null
            onDemand.leaving = false
            onDemand.next = null
            closed.destroy()
            if (next)
                onDemand.open(next)
        }

        target: onDemand.item
    }
}
