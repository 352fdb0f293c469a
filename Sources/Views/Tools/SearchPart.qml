import QtQuick
import Korvi.Views // the types written in C++
import "Links.js" as Links

// A finished search as a part of an answer.
CardPart {
    id: part

    required property var block
    property AnswerContext context: null

    readonly property string key: "search " + search.query + " " + (search.results[0]?.url ?? "")
    readonly property var kept: context?.kept[key] ?? null

    function keep(): void {
        if (context)
            context.kept[key] = { unfolded: view.unfolded, tab: view.tab }
    }

    implicitHeight: view.implicitHeight

    Component.onCompleted: {
        view.unfolded = kept?.unfolded ?? false
        view.tab = kept?.tab ?? ""
    }

    SearchBlock {
        id: search

        block: part.block
    }
    WebSearchResultsView {
        id: view

        answer: search.answer
        focus: true
        images: search.images
        query: search.query
        responseTime: search.responseTime
        results: search.results
        width: part.width

        onCopyWanted: text => part.copyWanted(text)
        onImageOpened: index => part.context?.imagesWanted(
            search.images.map(image => ({ url: image.url, alt: image.description })), index)
        onLinkOpened: url => Links.open(url)
        onTabChosen: part.keep()
        onUnfoldedToggled: part.keep()
    }
}
