.pragma library

// What a search's results can be looked at by.
const answer = "answer"
const sources = "sources"
const images = "images"

const titles = { answer: "Ответ", sources: "Источники", images: "Картинки" }

// What the overview shows of them.
const firstSources = 8
const firstImages = 6

// The tabs that have something to show, for these counts.
function tabsOf(answers, sourceCount, imageCount) {
    const tabs = []
    if (answers > 0 || imageCount > 0 || sourceCount > firstSources)
        tabs.push(answer)
    if (sourceCount > 0)
        tabs.push(sources)
    if (imageCount > 0)
        tabs.push(images)
    return tabs
}
