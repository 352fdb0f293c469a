pragma Singleton
import QtQuick

// Every colour, size and duration that a screen may use. Follows the desktop's light or dark scheme unless told.
ThemeColors {
    id: theme

    property string scheme: "system" // "system", "light" or "dark"
    property real textSize: 13 // pixels, 11 to 20; everything that holds text grows with it
    property bool reducedMotion: false

    dark: scheme === "dark" || (scheme !== "light" && desktop.window.hslLightness < 0.5)
    readonly property SystemPalette desktop: SystemPalette {}

    // The 8-pixel grid, 4 for the insides of controls.
    readonly property int gap1: 4
    readonly property int gap2: 8
    readonly property int gap3: 12
    readonly property int gap4: 16
    readonly property int gap5: 20
    readonly property int gap6: 24
    readonly property int gap8: 32

    readonly property int radiusRow: 8
    readonly property int radiusField: 10
    readonly property int radiusCard: 12
    readonly property int radiusBubble: 16
    readonly property int radiusComposer: 20

    readonly property int sidebarWidth: 260
    readonly property int foldWidth: 720 // below it the sidebar folds away
    readonly property int readingWidth: 760
    readonly property int formWidth: 340
    readonly property int dialogWidth: 400
    readonly property int menuWidth: 220
    readonly property int wideMenuWidth: 320 // menus whose rows have a title and a line under it
    readonly property int pickerWidth: 380
    readonly property int paletteWidth: 560
    readonly property int sheetWidth: 520
    readonly property int guideWidth: 860
    readonly property int guideFoldWidth: 640 // below it the drawing stands above the words
    readonly property int settingsFoldWidth: 600 // below it the sections of the settings are symbols
    readonly property int headerHeight: px(48)
    readonly property int rowHeight: px(32)
    readonly property int chipHeight: px(28)
    readonly property int attachmentHeight: px(34) // of a file in the composer
    readonly property int attachmentWidth: px(240) // at the most
    readonly property int sentFileHeight: px(52)
    readonly property int sentFileWidth: px(280)
    readonly property int sentImageWidth: px(260) // of one alone
    readonly property int sentImageHeight: px(180)
    readonly property int sentTile: px(128) // of one of several
    readonly property int tallRowHeight: px(48) // a title and a line under it
    readonly property int fieldHeight: px(40)
    readonly property int buttonHeight: px(36)
    readonly property int roundButton: px(32)
    readonly property int actionHeight: px(26)
    readonly property int cardHeight: px(64) // of a document or a file in an answer
    readonly property int cardWidth: px(420) // at the most
    readonly property int cardTile: px(40) // the symbol of what it is
    readonly property int codeHeader: px(34)
    readonly property int imageHeight: 420 // of an image in an answer, at the most
    readonly property int imagePlaceholder: 240 // of one that is not there yet
    readonly property int imageDecoded: 1600 // pixels, of the longer edge
    readonly property int cellPadding: px(9) // above and below the text of a table
    readonly property int icon: px(16)
    readonly property int hairline: 1
    readonly property int haloWidth: 3

    readonly property string family: "Inter"
    readonly property string monoFamily: "JetBrains Mono"
    readonly property int fontSmall: px(11)
    readonly property int fontLabel: px(12)
    readonly property int fontBody: px(13)
    readonly property int fontInlineCode: px(12) // in body text
    readonly property int fontCode: px(12)
    readonly property int fontHeading2: px(15)
    readonly property int fontHeading1: px(17)
    readonly property int fontTitle: px(22)
    readonly property int fontCodeBox: px(24)
    readonly property int fontDisplay: px(26)

    // Formulas and diagrams.
    readonly property int fontFormula: px(18)
    readonly property int fontInlineFormula: px(14) // its small letters are as high as those of the words around it
    readonly property real leastFormulaFit: 0.75 // of its size: a wide one is not made smaller than that
    readonly property int pendingFormulaHeight: 40 // before it is known
    readonly property int diagramMargin: 26 // above and below

    // Milliseconds.
    readonly property int quick: reducedMotion ? 0 : 120
    readonly property int calm: reducedMotion ? 0 : 180
    readonly property int splashFade: reducedMotion ? 0 : 300
    readonly property int jump: reducedMotion ? 0 : 250 // to another place of a list
    readonly property int pulse: 900
    readonly property int toolTipDelay: 600
    readonly property int feedback: 1600 // a button says what it has done
    readonly property int patience: 1000 // before something is shown in place of what does not come

    // A length that was drawn for 13-pixel text.
    function px(length: real): int {
        return Math.round(length * textSize / 13)
    }

    // Height of a line of text of that size: 20 for 13, tighter for headings.
    function leading(size: real): int {
        return Math.round(size * (size >= fontHeading1 ? 1.3 : 20 / 13))
    }
}
