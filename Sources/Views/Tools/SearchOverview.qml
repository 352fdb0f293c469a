import QtQuick
import "Russian.js" as Russian
import "SearchTab.js" as SearchTab

// The answer of a search, and the first of its sources and pictures.
Column {
    id: overview

    required property var answer
    required property var results
    required property var images

    signal linkOpened(string url)
    signal imageOpened(int index)
    signal tabWanted(string tab)
    signal copyWanted(string text)

    spacing: Theme.gap3

    Repeater {
        model: overview.answer

        // qmllint disable unqualified
        delegate: SelectableText {
            required property string modelData

            content: modelData
            objectName: "searchAnswer"
            width: overview.width
        }
        // qmllint enable unqualified
    }
    Carousel {
        model: overview.results.slice(0, SearchTab.firstSources)
        objectName: "sourceCarousel"
        rest: Math.max(0, overview.results.length - SearchTab.firstSources)
        restText: "Ещё " + Russian.counted(rest, "источник", "источника", "источников")
        visible: overview.results.length > 0
        width: parent.width

        // qmllint disable unqualified
        delegate: SourceCard {
            required property var modelData

            domain: modelData.domain
            favicon: modelData.favicon
            text: modelData.title
            url: modelData.url

            onClicked: overview.linkOpened(url)
        }
        // qmllint enable unqualified

        onRestWanted: overview.tabWanted(SearchTab.sources)
    }
    Carousel {
        model: overview.images.slice(0, SearchTab.firstImages)
        objectName: "imageCarousel"
        rest: Math.max(0, overview.images.length - SearchTab.firstImages)
        restText: "Ещё " + Russian.counted(rest, "картинка", "картинки", "картинок")
        visible: overview.images.length > 0
        width: parent.width

        // qmllint disable unqualified
        delegate: SearchImage {
            required property int index
            required property var modelData

            text: modelData.description || "Картинка"
            url: modelData.url

            onClicked: overview.imageOpened(index)
        }
        // qmllint enable unqualified

        onRestWanted: overview.tabWanted(SearchTab.images)
    }
}
