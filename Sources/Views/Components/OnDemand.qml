import QtQuick
import QtQuick.Templates as T

// A dialog of this module that is loaded when it is first asked for and forgotten when it is closed, so that a start
// pays nothing for it. Its signals are heard through `Connections { target: onDemand.item }`.
Item {
    id: onDemand

    required property url source
    property T.Popup item: null
    property bool leaving: false

    // While it is open, opening it again does nothing; one that is on its way out makes room at once.
    function open(properties: var): void {
        if (item && !leaving)
            return
        const gone = item
        const component = Qt.createComponent(source)
        if (component.status === Component.Error) {
            console.warn(component.errorString())
            return
        }
        leaving = false
        item = component.createObject(onDemand, properties) as T.Popup
        item.open()
        if (gone)
            gone.destroy()
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
            onDemand.leaving = false
            onDemand.item = null
            closed.destroy()
        }

        target: onDemand.item
    }
}
