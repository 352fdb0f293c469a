import QtQuick

// Stands for a line of text.
Rectangle {
    height: Theme.px(6)
    radius: height / 2
}
