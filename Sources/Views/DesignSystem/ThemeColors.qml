import QtQuick

// Every colour, of the light or the dark scheme.
QtObject {
    required property bool dark

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
    readonly property color codeKeyword: dark ? "#e06b75" : "#b8323f" // tokens of a code block
    readonly property color codeString:  dark ? "#99c278" : "#447321"
    readonly property color codeNumber:  dark ? "#d19966" : "#955a17"
    readonly property color codeComment: dark ? "#80858f" : "#6a6d75"
    readonly property color codeType:    dark ? "#61b0f0" : "#1768b0"
    readonly property color icode:   dark ? "#f0958d" : "#b3403a" // inline code text
    readonly property color icodebg: dark ? "#2d2a29" : "#f3f1ee" // inline code background
    readonly property color diagram: dark ? Qt.rgba(0.1176, 0.1176, 0.1176, 1) : Qt.rgba(0.949, 0.949, 0.949, 1) // behind one
    readonly property color fallback: dark ? "#2d2d2d" : "#e8e8e8" // behind the code of what is no diagram
    readonly property color fallbackText: dark ? "#aaaaaa" : "#666666"
    readonly property color ok:      dark ? "#5cbf8a" : "#26794c" // success
    readonly property color err:     dark ? "#ef7a73" : "#b93530" // error
    readonly property color errbg:   dark ? "#3a2322" : "#fdf0ef" // error background
    readonly property color violet:  dark ? "#a993f0" : "#6b4fc8" // accents of the guides
    readonly property color amber:   dark ? "#e0ad5a" : "#96610d"
    readonly property color accHover: dark ? "#62aaf3" : "#155fb0" // accent under the pointer
    readonly property color errHover: dark ? "#f39089" : "#a02b27" // destructive action under the pointer
    readonly property color sideSel: dark ? "#2a2a28" : "#f0f0ec" // selected row on the sidebar
    readonly property color pick:    dark ? "#31312f" : "#f0f0ec" // row of a menu that the keyboard or pointer is on
    readonly property color hover:   dark ? "#0dffffff" : "#0a000000" // laid over what is under the pointer
    readonly property color selection: dark ? "#594a9cf0" : "#401a6dc8" // behind selected text
    readonly property color halo:    dark ? "#404a9cf0" : "#211a6dc8" // around what has the focus
    readonly property color scrim:   dark ? "#99000000" : "#52000000" // behind a drawer
    readonly property color shadow:  dark ? "#0a000000" : "#02000000" // one layer of a soft shadow
    // Behind films and pictures it is dark in both schemes.
    readonly property color stage:   dark ? "#0f0f0e" : "#262624"
    readonly property color stageText: "#f4f4f0"
    readonly property color stageButton: "#b33a3a38"
    readonly property color stageLit: "#d9565653"
    readonly property color stageScrim: "#a6000000"
    readonly property color viewer:  "#e6101010"
    readonly property color paper:   "#ffffff" // under documents that bring their own colours
}
