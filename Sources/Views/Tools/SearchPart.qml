import QtQuick
import Korvi.Views // the types written in C++
import "Links.js" as Links

// A finished search as a part of an answer.
CardPart {
    id: part

    required property var block
    property AnswerContext context: null
    property var kept: ({}) // what the reader did to it, for when it is made again

    function keep(): void {
        kept.unfolded = view.unfolded
        kept.tab = view.tab
    }

    implicitHeight: view.implicitHeight

    Component.onCompleted: {
        view.unfolded = kept.unfolded ?? false
        view.tab = kept.tab ?? ""
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
