import QtQuick

// All pictures of a search, a page of them at a time.
Column {
    id: pictures

    required property var images

    readonly property int page: 24
    property int shown: page

    readonly property int columns: Math.max(2, Math.floor((width + Theme.gap2) / Theme.px(160)))

    signal imageOpened(int index)

    spacing: Theme.gap3

    Grid {
        id: grid

        columns: pictures.columns
        spacing: Theme.gap2
        width: parent.width

        Repeater {
            model: pictures.images.slice(0, pictures.shown)

            // qmllint disable unqualified
            delegate: SearchImage {
                required property int index
                required property var modelData

                height: Math.round(width * 0.75)
                objectName: "searchImage"
                text: modelData.description || "Картинка"
                url: modelData.url
                width: Math.floor((grid.width + Theme.gap2) / pictures.columns) - Theme.gap2

                onClicked: pictures.imageOpened(index)
            }
            // qmllint enable unqualified
        }
    }
    LinkButton {
        text: "Показать ещё"
        visible: pictures.images.length > pictures.shown
        x: -Theme.gap2

        onClicked: pictures.shown += pictures.page
    }
}
