import QtQuick
import Korvi.Views // the types written in C++

// Headers, paragraphs and list items of an answer, with the formulas in them.
ReadingText {
    id: edit

    required property int index
    required property int revision
    required property bool isOpen
    required property AnswerParts parts
    required property TextStyle style

    // Where the text ends; named so that growth and a new width are noticed.
    readonly property rect end: {
        edit.revision
        edit.contentHeight
        edit.width
        return edit.positionToRectangle(edit.length)
    }

    signal allWanted

    // The formula there.
    function sourceAt(x: real, y: real): var {
        for (let i = 0; i < formulas.count; ++i) {
            const formula = formulas.itemAt(i) as InlineFormula
            if (formula?.contains(formula.mapFromItem(edit, x, y)))
                return formula.sourceAt(0, 0)
        }
        return null
    }

    Accessible.name: isOpen ? "" : parts.between(index, 0, index, length) // qmllint disable
    copiesItself: false
    objectName: "textPart"

    Keys.onPressed: event => {
        if (!event.matches(StandardKey.SelectAll))
            return
        allWanted() // where one text ends and another begins is nothing to the reader
        event.accepted = true
    }
    Component.onCompleted: paragraphs.findPlaces()
    onContentHeightChanged: paragraphs.findPlaces()
    onWidthChanged: paragraphs.findPlaces()

    ParagraphDocument {
        id: paragraphs

        document: edit.textDocument
        parts: edit.parts
        revision: edit.revision
        row: edit.index
        style: edit.style

        onAboutToChange: edit.keepSelection()
        onChanged: edit.restoreSelection()
    }
    // qmllint disable unqualified
    Repeater {
        model: paragraphs.codePlaces

        Rectangle {
            required property rect place

            color: Theme.icodebg
            height: Math.round(place.height) + Theme.hairline * 2
            radius: Theme.gap1
            width: Math.round(place.width) + Theme.gap1
            x: Math.round(place.x) - Theme.gap1 / 2
            y: Math.round(place.y) - Theme.hairline
            z: -1 // under the text
        }
    }
    Repeater {
        id: formulas

        model: paragraphs.formulas

        InlineFormula {
            required property int index
            required property rect place
            required property string placeText

            color: edit.style.color
            formula: placeText
            x: Math.round(place.x) // between pixels it would be blurred, and paler than the words
            y: Math.round(place.y + place.height - ascent)

            onSizeChanged: paragraphs.setFormulaSize(index, width, ascent, height - ascent)
        }
    }
    // qmllint enable unqualified
    Loader {
        active: edit.isOpen
        x: edit.end.x + Theme.gap1
        y: edit.end.y + (edit.end.height - height) / 2

        sourceComponent: StreamingDot {}
    }
}
