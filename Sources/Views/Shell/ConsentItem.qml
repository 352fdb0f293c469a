import QtQuick

// One kind of data that is passed on.
QtObject {
    required property string symbol
    required property string title
    required property string text
}
