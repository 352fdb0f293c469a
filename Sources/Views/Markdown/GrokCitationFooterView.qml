import QtQuick

// The sources that an answer cites, beneath its text. A source opens in the system's browser.
Flow {
    id: footer

    required property var sources // [{ index, url, domain }]

    Accessible.name: "Источники"
    Accessible.role: Accessible.List
    objectName: "citationFooter"
    spacing: Theme.gap2

    Repeater {
        model: footer.sources

        CitationChip {
            required property var modelData

            domain: modelData.domain
            number: modelData.index
            url: modelData.url
        }
    }
}
