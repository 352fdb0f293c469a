# The sources of the engine, for the room and for the fuzz harness, which compiles them with another compiler.
set(TERMCORE_DIR ${CMAKE_CURRENT_LIST_DIR})
set(TERMCORE_UNICODE_DATA /usr/share/unicode CACHE PATH "The Unicode data files (Debian: unicode-data)")

set(TERMCORE_WIDTH_TABLES ${CMAKE_CURRENT_BINARY_DIR}/WidthTables.cpp)
add_custom_command(
    OUTPUT ${TERMCORE_WIDTH_TABLES}
    COMMAND Python3::Interpreter ${TERMCORE_DIR}/Unicode/generate_width_tables.py ${TERMCORE_UNICODE_DATA} ${TERMCORE_WIDTH_TABLES}
    DEPENDS ${TERMCORE_DIR}/Unicode/generate_width_tables.py ${TERMCORE_UNICODE_DATA}/UnicodeData.txt
    COMMENT "Width tables from the Unicode data"
    VERBATIM)

set(TERMCORE_SOURCES
    Cells/Attribute.cpp
    Cells/StyleTable.cpp
    Cells/TinyAtom.cpp
    Lines/Buffer.cpp
    Lines/BufferLine.cpp
    Lines/BufferPrinting.cpp
    Lines/CircularBufferLineList.cpp
    Lines/LineArena.cpp
    Lines/PackedLine.cpp
    Lines/Reflow.cpp
    Parser/EscapeSequenceParser.cpp
    Parser/TransitionTable.cpp
    Process/DebugIO.cpp
    Process/HeadlessTerminal.cpp
    Process/LocalProcess.cpp
    Process/ProcessWorker.cpp
    Process/PseudoTerminalHelpers.cpp
    Process/RunLoop.cpp
    Terminal/CharSets.cpp
    Terminal/Color.cpp
    Terminal/ControlFunctions.cpp
    Terminal/CursorCommands.cpp
    Terminal/EraseCommands.cpp
    Terminal/GraphicRendition.cpp
    Terminal/ModeCommands.cpp
    Terminal/OscCommands.cpp
    Terminal/Palette.cpp
    Terminal/PrintingPath.cpp
    Terminal/RectangleCommands.cpp
    Terminal/ReportCommands.cpp
    Terminal/RequestStatusString.cpp
    Terminal/ScrollCommands.cpp
    Terminal/Terminal.cpp
    Terminal/TerminalCommands.cpp
    Terminal/WindowCommands.cpp
    Unicode/GraphemeTable.cpp
    Unicode/Utf8.cpp)
list(TRANSFORM TERMCORE_SOURCES PREPEND ${TERMCORE_DIR}/)
list(APPEND TERMCORE_SOURCES ${TERMCORE_WIDTH_TABLES})
