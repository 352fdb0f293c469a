import QtQuick

// All sources of a search, a page of them at a time.
Column {
    id: sources

    required property var results

    readonly property int page: 30
    property int shown: page

    signal linkOpened(string url)

    spacing: Theme.gap1

    Repeater {
        model: sources.results.slice(0, sources.shown)

        // qmllint disable unqualified
        delegate: SourceRow {
            required property var modelData

            domain: modelData.domain
            excerpt: modelData.content
            favicon: modelData.favicon
            objectName: "sourceRow"
            text: modelData.title
            url: modelData.url
            width: sources.width + Theme.gap2 * 2
            x: -Theme.gap2

            onClicked: sources.linkOpened(url)
        }
        // qmllint enable unqualified
    }
    LinkButton {
        text: "Показать ещё"
        visible: sources.results.length > sources.shown
        x: -Theme.gap2

        onClicked: sources.shown += sources.page
    }
}
