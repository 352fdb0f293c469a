import QtQuick

// The error of a form, in its place under the field. Takes no room while there is none.
Label {
    Accessible.role: Accessible.AlertMessage
    color: Theme.err
    horizontalAlignment: Text.AlignHCenter
    objectName: "formError"
    visible: text.length > 0
    width: parent.width
    wrapMode: Text.Wrap
}
