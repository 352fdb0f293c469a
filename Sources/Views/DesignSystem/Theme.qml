pragma Singleton
import QtQuick

// Every colour, size and duration that a screen may use. Follows the desktop's light or dark scheme unless told.
QtObject {
    id: theme

    property string scheme: "system" // "system", "light" or "dark"
    property real textSize: 13 // pixels, 11 to 20; everything that holds text grows with it
    property bool reducedMotion: false

    readonly property bool dark: scheme === "dark" || (scheme !== "light" && desktop.window.hslLightness < 0.5)
    readonly property SystemPalette desktop: SystemPalette {}

    //                                        dark        light
    readonly property color bg:      dark ? "#1c1c1b" : "#ffffff" // window
    readonly property color side:    dark ? "#161615" : "#f7f7f5" // sidebar
    readonly property color raise:   dark ? "#242423" : "#ffffff" // composer, menus
    readonly property color sunk:    dark ? "#2a2a28" : "#f3f3f0" // sunken or selected surface
    readonly property color line:    dark ? "#2e2e2c" : "#e6e6e2" // hairline
    readonly property color line2:   dark ? "#3b3b38" : "#d9d9d4" // border of a control
    readonly property color t1:      dark ? "#ecece8" : "#1f1f1d" // text
    readonly property color t2:      dark ? "#a6a69f" : "#63635e" // secondary text
    readonly property color t3:      dark ? "#92928b" : "#70706b" // tertiary text, placeholder
    readonly property color acc:     dark ? "#4a9cf0" : "#1a6dc8" // accent
    readonly property color onacc:   dark ? "#10202f" : "#ffffff" // text and icons on the accent
    readonly property color accbg:   dark ? "#1d2f42" : "#e8f2fc" // accent background
    readonly property color code:    dark ? "#151514" : "#f6f6f3" // code block
    readonly property color icode:   dark ? "#f0958d" : "#b3403a" // inline code text
    readonly property color icodebg: dark ? "#2d2a29" : "#f3f1ee" // inline code background
    readonly property color ok:      dark ? "#5cbf8a" : "#26794c" // success
    readonly property color err:     dark ? "#ef7a73" : "#b93530" // error
    readonly property color errbg:   dark ? "#3a2322" : "#fdf0ef" // error background
    readonly property color accHover: dark ? "#62aaf3" : "#155fb0" // accent under the pointer
    readonly property color errHover: dark ? "#f39089" : "#a02b27" // destructive action under the pointer
    readonly property color sideSel: dark ? "#2a2a28" : "#eeeeea" // selected row on the sidebar
    readonly property color pick:    dark ? "#343432" : "#f0f0ec" // row of a menu that the keyboard or pointer is on
    readonly property color hover:   dark ? "#0dffffff" : "#0a000000" // laid over what is under the pointer
    readonly property color selection: dark ? "#594a9cf0" : "#401a6dc8" // behind selected text
    readonly property color halo:    dark ? "#404a9cf0" : "#211a6dc8" // around what has the focus
    readonly property color scrim:   dark ? "#99000000" : "#52000000" // behind a drawer
    readonly property color shadow:  dark ? "#0a000000" : "#02000000" // one layer of a soft shadow

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
    readonly property int headerHeight: px(48)
    readonly property int rowHeight: px(32)
    readonly property int chipHeight: px(28)
    readonly property int tallRowHeight: px(48) // a title and a line under it
    readonly property int fieldHeight: px(40)
    readonly property int buttonHeight: px(36)
    readonly property int roundButton: px(32)
    readonly property int icon: px(16)
    readonly property int hairline: 1
    readonly property int haloWidth: 3

    readonly property string family: "Inter"
    readonly property string monoFamily: "JetBrains Mono"
    readonly property int fontSmall: px(11)
    readonly property int fontLabel: px(12)
    readonly property int fontBody: px(13)
    readonly property int fontCode: px(12)
    readonly property int fontHeading2: px(15)
    readonly property int fontHeading1: px(17)
    readonly property int fontTitle: px(22)
    readonly property int fontCodeBox: px(24)
    readonly property int fontDisplay: px(26)

    // Milliseconds.
    readonly property int quick: reducedMotion ? 0 : 120
    readonly property int calm: reducedMotion ? 0 : 180
    readonly property int splashFade: reducedMotion ? 0 : 300
    readonly property int pulse: 900
    readonly property int toolTipDelay: 600

    // A length that was drawn for 13-pixel text.
    function px(length: real): int {
        return Math.round(length * textSize / 13)
    }

    // Height of a line of text of that size: 20 for 13, tighter for headings.
    function leading(size: real): int {
        return Math.round(size * (size >= fontHeading1 ? 1.3 : 20 / 13))
    }
}
