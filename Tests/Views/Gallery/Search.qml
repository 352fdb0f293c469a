import QtQuick
import Korvi.Views

// Searches, under way and finished. The pictures come from a server on this machine, if one runs there.
Item {
    id: page

    readonly property string pictures: "http://127.0.0.1:18471/"
    readonly property var sites: ["nature.com", "kommersant.ru", "nplus1.ru", "eso.org", "habr.com", "space.com"]
    readonly property var results: [...Array(11).keys()].map(i => ({
        title: ["Обзор неба: первые данные открыты для всех", "Новый телескоп снял три тысячи галактик за ночь",
            "Как устроено зеркало"][i % 3],
        url: "https://www.%1/articles/%2".arg(sites[i % 6]).arg(i),
        content: "На этой неделе опубликованы снимки нового обзора неба. Данные за первый месяц доступны всем, кто "
            + "хочет их изучать, вместе с каталогом переменных звёзд и движущихся тел.",
        favicon: pictures + (i % 3 === 2 ? "none" : "f%1.png".arg(i % 3 + 1)),
        domain: sites[i % 6],
    }))
    readonly property var images: [...Array(9).keys()].map(i => ({
        url: pictures + "p%1.jpg".arg(i + 1), description: "Снимок " + (i + 1),
    }))
    readonly property var answer: ["На этой неделе опубликованы снимки нового обзора неба; данные за первый месяц "
        + "открыты для всех. Главное зеркало телескопа собрано из сегментов.", "Следующая публикация ожидается весной."]

    implicitHeight: column.height + Theme.gap4 * 2

    Column {
        id: column

        spacing: Theme.gap4
        width: Math.min(page.width - Theme.gap4 * 2, Theme.px(Theme.readingWidth))
        x: (page.width - width) / 2
        y: Theme.gap4

        WebSearchInProgressView {
            query: ""
            width: column.width
        }
        WebSearchInProgressView {
            query: "телескоп новости"
            width: column.width
        }
        WebSearchResultsView {
            answer: []
            images: []
            query: "телескоп новости"
            responseTime: 1.4
            results: page.results.slice(0, 6)
            width: column.width
        }
        WebSearchResultsView {
            answer: page.answer
            images: page.images
            query: "телескоп новости"
            responseTime: 1.4
            results: page.results
            unfolded: true
            width: column.width
        }
        WebSearchResultsView {
            answer: []
            images: []
            query: ""
            responseTime: 0
            results: page.results.slice(0, 3)
            unfolded: true
            width: column.width
        }
        WebSearchResultsView {
            answer: page.answer
            images: page.images
            query: "телескоп новости"
            responseTime: 12
            results: page.results
            tab: "images"
            unfolded: true
            width: column.width
        }
    }
}
