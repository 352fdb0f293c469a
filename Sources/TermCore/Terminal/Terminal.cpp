#include "Terminal/Terminal.h"

#include "Terminal/ControlFunctions.h"
#include "Terminal/CursorCommands.h"
#include "Terminal/OscCommands.h"
#include "Terminal/RequestStatusString.h"
#include "Terminal/ScrollCommands.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <string>

namespace termcore {
namespace {

constexpr ControlSequence noParameters; // control codes have none

int usableCols(int cols) {
    return std::clamp(cols, Terminal::MINIMUM_COLS, Buffer::largestSide);
}

int usableRows(int rows) {
    return std::clamp(rows, Terminal::MINIMUM_ROWS, Buffer::largestSide);
}

std::span<const std::uint8_t> bytesOf(std::string_view text) {
    return {reinterpret_cast<const std::uint8_t*>(text.data()), text.size()};
}

}

// -- life ---------------------------------------------------------------------------------------------------------------

Terminal::Terminal(TerminalDelegate* delegate, const TerminalOptions& initialOptions)
    : options(initialOptions)
    , tdel(delegate)
    , parser(*this)
    , printing(*this) {
    columnCount = usableCols(options.cols);
    rowCount = usableRows(options.rows);
    rebuildAnsiPalette(false);
    normalBuffer = std::make_unique<Buffer>(columnCount, rowCount, options.tabStopWidth, options.scrollback);
    normalBuffer->fillViewportRows();
    altBuffer = std::make_unique<Buffer>(columnCount, rowCount, options.tabStopWidth, std::nullopt);
    activeBuffer = normalBuffer.get();
    configureParser();
    bindScroll();
    setup(false);
}

Terminal::~Terminal() = default;

void Terminal::configureParser() {
    parser.errorHandler = [this](ParsingState state) {
        if (!silentLog)
            log("Parsing error, state: " + std::to_string(static_cast<int>(state.currentState)));
        return state;
    };
}

void Terminal::bindScroll() {
    for (Buffer* each : {normalBuffer.get(), altBuffer.get()})
        each->scroll = [this](bool isWrapped) { scroll(isWrapped); };
}

void Terminal::setup(bool isReset) {
    columnCount = usableCols(options.cols);
    rowCount = usableRows(options.rows);
    if (isReset) {
        *normalBuffer = Buffer(columnCount, rowCount, options.tabStopWidth, options.scrollback);
        normalBuffer->fillViewportRows();
        bindScroll();
        altBuffer->setupTabStops(-1, options.tabStopWidth);
        activeBuffer = normalBuffer.get();
    } else {
        normalBuffer->resize(columnCount, rowCount);
        altBuffer->resize(columnCount, rowCount);
    }
    const bool wasSmooth = modes.smoothScroll;
    const MouseProtocolEncoding protocol = modes.mouseProtocol;
    const bool focus = modes.sendFocus;
    const bool wasReverse = modes.reverseWraparound;
    modes = {};
    modes.smoothScroll = wasSmooth;
    modes.mouseProtocol = protocol;
    modes.sendFocus = focus;
    modes.reverseWraparound = wasReverse;
    modes.lineFeedMode = options.convertEol;
    setWraparound(true);
    setMarginMode(false);
    setInsertMode(false);
    charsets.reset();
    setCurAttr(Attribute::empty);
    setMouseMode(MouseMode::off);
    for (Buffer* each : {normalBuffer.get(), altBuffer.get()}) {
        each->setScrollTop(0);
        each->setScrollBottom(rowCount - 1);
        each->marginLeft = 0;
        each->marginRight = columnCount - 1;
    }
    cc.send8bit = false;
    hyperLinkTracking.reset();
    hostCurrentDirectory.reset();
}

void Terminal::resetToInitialState() {
    parser.reset();
    endSynchronizedOutput();
    options.rows = rowCount;
    options.cols = columnCount;
    const bool wasHidden = modes.cursorHidden;
    setup(true);
    clearAllKittyImages();
    modes.cursorHidden = wasHidden;
    refresh(0, rowCount - 1);
}

void Terminal::softReset() {
    modes.cursorHidden = false;
    modes.originMode = false;
    setInsertMode(false);
    modes.reverseWraparound = false;
    modes.applicationKeypad = false;
    modes.applicationCursor = false;
    setWraparound(true);
    activeBuffer->setScrollTop(0);
    activeBuffer->setScrollBottom(rowCount - 1);
    setCurAttr(Attribute::empty);
    activeBuffer->softReset();
    charsets.reset();
    modes.conformance = TerminalConformance::vt500;
    hyperLinkTracking.reset();
    modes.lineFeedMode = options.convertEol;
    resetAllColors();
    if (tdel != nullptr)
        tdel->showCursor(*this);
}

// -- input --------------------------------------------------------------------------------------------------------------

void Terminal::feed(std::span<const std::uint8_t> bytes) {
    if (syncDeadline)
        expireSynchronizedOutput(now());
    parser.parse(bytes);
    if (styles.wantsCollection())
        collectStyles();
}

void Terminal::feed(std::string_view text) {
    feed(bytesOf(text));
}

void Terminal::dispatchExecute(std::uint8_t code) {
    if (const auto handler = controlfunctions::findControl(code))
        handler(*this, noParameters);
    else
        log("Unknown EXECUTE code");
}

void Terminal::handleLineEnd() {
    commands::carriageReturn(*this, noParameters);
    commands::lineFeed(*this, noParameters);
}

void Terminal::dispatchEsc(std::string_view collect, std::uint8_t final) {
    if (const auto handler = controlfunctions::findEscape(collect, final))
        handler(*this, {{}, {}, collect, final});
    else if (!silentLog)
        log("Unknown ESC Code: ESC + " + std::string(collect) + static_cast<char>(final));
}

void Terminal::dispatchCsi(const ControlSequence& sequence) {
    if (const auto handler = controlfunctions::findSequence(sequence.collect, sequence.final))
        handler(*this, sequence);
    else if (!silentLog)
        log("Unknown CSI Code (collect=" + std::string(sequence.collect) +
            " code=" + static_cast<char>(sequence.final));
}

void Terminal::dispatchOsc(std::int64_t code, std::span<const std::uint8_t> data) {
    if (const auto found = oscHandlers.find(code); found != oscHandlers.end()) {
        found->second(data);
        return;
    }
    if (!osc::dispatch(*this, code, data) && !silentLog)
        log("Unknown OSC code: " + std::to_string(code));
}

void Terminal::dispatchApc(std::uint8_t code, std::span<const std::uint8_t> /*data*/) {
    if (!silentLog)
        log(std::string("Unknown APC code: ") + static_cast<char>(code));
}

std::unique_ptr<DcsHandler> Terminal::dcsHandler(std::string_view collect, std::uint8_t final) {
    if (collect == "$" && final == 'q')
        return std::make_unique<RequestStatusString>(*this);
    return nullptr;
}

void Terminal::log(std::string_view text) const {
    if (!silentLog)
        std::fprintf(stderr, "Info: TermCore: %.*s\n", static_cast<int>(text.size()), text.data());
}

// -- styles ---------------------------------------------------------------------------------------------------------------

/// Frees the looks that no cell has any more: memory stays in proportion to what is on the screen and in the history.
void Terminal::collectStyles() {
    std::vector<bool> marks(styles.capacity(), false);
    const auto mark = [&](std::uint32_t id) {
        if (StyleTable::isInterned(id))
            marks[StyleTable::indexOf(id)] = true;
    };
    normalBuffer->lines.forEachStyle(mark);
    altBuffer->lines.forEachStyle(mark);
    if (frozenBuffer)
        frozenBuffer->lines.forEachStyle(mark);
    styles.collect(marks);
    styleIsKnown = false;
}

void Terminal::garbageCollectPayload() {
    std::vector<bool> used(std::size_t{TinyAtom::maximumCode} + 1, false);
    const auto mark = [&](std::uint32_t id) { used[styles.payloadOf(id).code] = true; };
    normalBuffer->lines.forEachStyle(mark);
    altBuffer->lines.forEachStyle(mark);
    if (frozenBuffer)
        frozenBuffer->lines.forEachStyle(mark);
    std::erase_if(payloads, [&](TinyAtom atom) {
        if (used[atom.code])
            return false;
        TinyAtom::release(atom.code);
        return true;
    });
}

// -- size and buffers -----------------------------------------------------------------------------------------------------

void Terminal::resize(int newCols, int newRows) {
    newCols = usableCols(newCols);
    newRows = usableRows(newRows);
    if (newCols == columnCount && newRows == rowCount)
        return;
    endSynchronizedOutput();
    const int oldCols = columnCount;
    resizeBuffers(newCols, newRows);
    columnCount = options.cols = newCols;
    rowCount = options.rows = newRows;
    normalBuffer->setupTabStops(oldCols, options.tabStopWidth);
    altBuffer->setupTabStops(oldCols, options.tabStopWidth);
    refresh(0, rowCount - 1);
}

void Terminal::resizeBuffers(int newCols, int newRows) {
    // A program on the alternate screen may come back to the saved place: it moves with the text around the cursor.
    const int distance = normalBuffer->savedY - normalBuffer->y();
    normalBuffer->resize(newCols, newRows);
    normalBuffer->savedY = std::clamp(normalBuffer->y() + distance, 0, newRows - 1);
    altBuffer->resize(newCols, newRows);
}

void Terminal::changeScrollback(std::optional<int> lines) {
    normalBuffer->changeHistorySize(lines);
    options.scrollback = lines.value_or(0);
    refresh(0, rowCount - 1);
}

void Terminal::activateAltBuffer() {
    if (isCurrentBufferAlternate())
        return;
    altBuffer->setX(normalBuffer->x());
    altBuffer->setY(normalBuffer->y());
    altBuffer->fillViewportRows();
    activeBuffer = altBuffer.get();
}

void Terminal::activateNormalBuffer(bool clearAlt) {
    if (!isCurrentBufferAlternate())
        return;
    normalBuffer->setX(altBuffer->x());
    normalBuffer->setY(altBuffer->y());
    if (clearAlt)
        altBuffer->clear();
    activeBuffer = normalBuffer.get();
}

void Terminal::changeColumns(int newCols) {
    resize(newCols, rowCount);
    endSynchronizedOutput();
    options.cols = columnCount;
    options.rows = rowCount;
    const bool wasHidden = modes.cursorHidden;
    setup(true);
    modes.cursorHidden = wasHidden;
    clearAllKittyImages();
    refresh(0, rowCount - 1);
}

void Terminal::setWraparound(bool on) {
    modes.wraparound = normalBuffer->wraparound = altBuffer->wraparound = on;
}

void Terminal::setMarginMode(bool on) {
    modes.marginMode = normalBuffer->marginMode = altBuffer->marginMode = on;
}

void Terminal::setInsertMode(bool on) {
    modes.insertMode = normalBuffer->insertMode = altBuffer->insertMode = on;
}

void Terminal::setMouseMode(MouseMode mode) {
    modes.mouseMode = mode;
    if (tdel != nullptr)
        tdel->mouseModeChanged(*this);
}

// -- synchronized output --------------------------------------------------------------------------------------------------

void Terminal::beginSynchronizedOutput() {
    const bool wasActive = syncDeadline.has_value();
    if (!frozenBuffer) {
        frozenBuffer.emplace(activeBuffer->snapshot());
        frozenIsAlternate = isCurrentBufferAlternate();
    }
    syncDeadline = now() + synchronizedOutputTimeout;
    if (!wasActive && tdel != nullptr)
        tdel->synchronizedOutputChanged(*this, true);
}

void Terminal::endSynchronizedOutput() {
    if (!syncDeadline)
        return;
    frozenBuffer.reset();
    frozenIsAlternate = false;
    syncDeadline.reset();
    updateFullScreen();
    if (tdel != nullptr)
        tdel->synchronizedOutputChanged(*this, false);
}

void Terminal::expireSynchronizedOutput(Clock::time_point time) {
    if (syncDeadline && time >= *syncDeadline)
        endSynchronizedOutput();
}

// -- reading --------------------------------------------------------------------------------------------------------------

CharData Terminal::unfolded(Cell cell) const {
    CharData result;
    result.code = static_cast<std::int32_t>(cell.code());
    result.width = static_cast<std::int8_t>(cell.width());
    result.payload = styles.payloadOf(cell.style);
    result.attribute = styles.attributeOf(cell.style);
    return result;
}

std::optional<CharData> Terminal::getCharData(int col, int row) const {
    if (col < 0 || col >= columnCount || row < 0 || row >= rowCount)
        return std::nullopt;
    return unfolded(displayBuffer().getCharAbsolute(col, row + displayBuffer().yDisp));
}

std::string Terminal::getCharacter(int col, int row) const {
    const auto cell = getCharData(col, row);
    return cell ? character(cell->code) : std::string();
}

std::span<const Cell> Terminal::lineOf(const Buffer& from, int absoluteRow, std::vector<Cell>& scratch) const {
    if (absoluteRow < 0 || static_cast<std::size_t>(absoluteRow) >= from.lines.count())
        return {};
    const auto cells = from.lines.read(static_cast<std::size_t>(absoluteRow), scratch);
    if (!cells.empty() && cells.data() != scratch.data())
        return cells;
    scratch.resize(std::max<std::size_t>(cells.size(), static_cast<std::size_t>(columnCount)));
    std::fill(scratch.begin() + static_cast<std::ptrdiff_t>(cells.size()), scratch.end(), Cell{});
    return scratch;
}

std::span<const Cell> Terminal::getLine(int row, std::vector<Cell>& scratch) const {
    return lineOf(displayBuffer(), row + displayBuffer().yDisp, scratch);
}

std::span<const Cell> Terminal::getScrollInvariantLine(int row, std::vector<Cell>& scratch) const {
    return lineOf(displayBuffer(), row - displayBuffer().linesTop, scratch);
}

// -- host side ------------------------------------------------------------------------------------------------------------

void Terminal::sendResponse(std::string_view text) {
    if (tdel != nullptr)
        tdel->send(*this, bytesOf(text));
}

void Terminal::showCursor() {
    if (!modes.cursorHidden)
        return;
    modes.cursorHidden = false;
    refresh(activeBuffer->y(), activeBuffer->y());
    if (tdel != nullptr)
        tdel->showCursor(*this);
}

void Terminal::hideCursor() {
    if (modes.cursorHidden)
        return;
    modes.cursorHidden = true;
    if (tdel != nullptr)
        tdel->hideCursor(*this);
}

void Terminal::setCursorStyle(CursorStyle newStyle) {
    if (options.cursorStyle == newStyle)
        return;
    options.cursorStyle = newStyle;
    if (tdel != nullptr)
        tdel->cursorStyleChanged(*this, newStyle);
}

void Terminal::setTitle(std::string_view text) {
    terminalTitle = text;
    if (tdel != nullptr)
        tdel->setTerminalTitle(*this, text);
}

void Terminal::setIconTitle(std::string_view text) {
    iconTitle = text;
    if (tdel != nullptr)
        tdel->setTerminalIconTitle(*this, text);
}

void Terminal::setForegroundColor(const Color& color) {
    foregroundColor = color;
    if (settingFgColor)
        return;
    settingFgColor = true;
    if (tdel != nullptr)
        tdel->setForegroundColor(*this, color);
    settingFgColor = false;
    if (options.ansi256PaletteStrategy == Ansi256PaletteStrategy::base16Lab)
        rebuildAnsiPalette(true);
}

void Terminal::setBackgroundColor(const Color& color) {
    backgroundColor = color;
    if (settingBgColor)
        return;
    settingBgColor = true;
    if (tdel != nullptr)
        tdel->setBackgroundColor(*this, color);
    settingBgColor = false;
    if (options.ansi256PaletteStrategy == Ansi256PaletteStrategy::base16Lab)
        rebuildAnsiPalette(true);
}

void Terminal::setCursorColor(const std::optional<Color>& color) {
    cursorColor = color;
    if (settingCursorColor)
        return;
    settingCursorColor = true;
    if (tdel != nullptr)
        tdel->setCursorColor(*this, color);
    settingCursorColor = false;
}

void Terminal::installPalette(std::span<const Color> colors) {
    if (colors.size() != palette.installedColors.size())
        return;
    std::copy(colors.begin(), colors.end(), palette.installedColors.begin());
    rebuildAnsiPalette(true);
}

void Terminal::rebuildAnsiPalette(bool notifyDelegate) {
    palette.rebuild(options.ansi256PaletteStrategy, foregroundColor, backgroundColor);
    if (notifyDelegate && tdel != nullptr)
        tdel->colorChanged(*this, std::nullopt);
}

void Terminal::resetAllColors() {
    palette.ansiColors = palette.defaultAnsiColors;
    if (tdel != nullptr)
        tdel->colorChanged(*this, std::nullopt);
}

std::vector<std::string> Terminal::getEnvironmentVariables(const std::optional<std::string>& termName, bool trueColor) {
    std::vector<std::string> result{"TERM=" + termName.value_or("xterm-256color")};
    if (trueColor)
        result.emplace_back("COLORTERM=truecolor");
    result.emplace_back("LANG=en_US.UTF-8");
    for (const char* name : {"LOGNAME", "USER", "DISPLAY", "LC_TYPE", "USER", "HOME"}) {
        // The environment is only written to before threads start.
        if (const char* value = std::getenv(name)) // NOLINT(concurrency-mt-unsafe)
            result.push_back(std::string(name) + "=" + value);
    }
    return result;
}

}
