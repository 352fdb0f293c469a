#pragma once

#include "Cells/CharData.h"
#include "Cells/Position.h"
#include "Cells/StyleTable.h"
#include "Lines/Buffer.h"
#include "Parser/EscapeSequenceParser.h"
#include "Parser/ParserTarget.h"
#include "Terminal/CharsetState.h"
#include "Terminal/Palette.h"
#include "Terminal/PrintingPath.h"
#include "Terminal/TerminalDelegate.h"
#include "Terminal/TerminalModes.h"
#include "Terminal/TerminalOptions.h"
#include "Terminal/UpdateRange.h"

#include <chrono>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace termcore {

/// The terminal emulator: two buffers, a parser, and the state that control functions work on. It has no view and starts
/// no threads or timers; all calls must come from one thread at a time. The control functions themselves are free
/// functions over this state (`ControlFunctions.h` lists them).
class Terminal final : private ParserTarget {
public:
    using Clock = std::chrono::steady_clock;
    using OscHandler = std::function<void(std::span<const std::uint8_t> data)>;

    static constexpr int MINIMUM_COLS = 2;
    static constexpr int MINIMUM_ROWS = 1;
    static constexpr std::chrono::milliseconds synchronizedOutputTimeout{1000};

    /// `delegate` is not owned and may be null; it must stay alive until `setDelegate(nullptr)` or the terminal's end.
    explicit Terminal(TerminalDelegate* delegate, const TerminalOptions& initialOptions = {});
    ~Terminal() override;
    Terminal(const Terminal&) = delete;
    Terminal& operator=(const Terminal&) = delete;

    // -- input --------------------------------------------------------------------------------------------------------

    void feed(std::span<const std::uint8_t> bytes);
    void feed(std::string_view text);
    /// Sizes below the minimum are raised, absurd ones lowered to `Buffer::largestSide`.
    void resize(int newCols, int newRows);
    /// A handler that comes before the built-in one of this OSC number.
    void registerOscHandler(std::int64_t code, OscHandler handler) { oscHandlers[code] = std::move(handler); }

    // -- reading --------------------------------------------------------------------------------------------------------

    int cols() const { return columnCount; }
    int rows() const { return rowCount; }
    Position getDims() const { return {columnCount, rowCount}; }
    /// The cursor in screen coordinates; the column is `cols()` after a glyph in the last one.
    Position getCursorLocation() const { return {activeBuffer->x(), activeBuffer->y()}; }
    int getTopVisibleRow() const { return displayBuffer().yDisp; }
    /// A cell of the visible rows; nothing outside them.
    std::optional<CharData> getCharData(int col, int row) const;
    std::string getCharacter(int col, int row) const;
    /// The cells of a visible row, or of a row that keeps its number while lines leave the history; empty when there is
    /// no such row. `scratch` must live as long as the result is used.
    std::span<const Cell> getLine(int row, std::vector<Cell>& scratch) const;
    std::span<const Cell> getScrollInvariantLine(int row, std::vector<Cell>& scratch) const;
    CharData unfolded(Cell cell) const;
    /// The text of a cell's code: a scalar, a cluster, or a space.
    std::string character(std::int32_t code) const { return printing.graphemes.utf8(code); }
    std::u32string text(std::int32_t code) const { return printing.graphemes.text(code); }
    std::optional<std::int32_t> code(std::u32string_view cluster) { return printing.graphemes.code(cluster); }

    /// The buffer to draw: the snapshot while synchronized output is on.
    const Buffer& displayBuffer() const { return frozenBuffer ? *frozenBuffer : *activeBuffer; }
    bool isCurrentBufferAlternate() const { return activeBuffer == altBuffer.get(); }
    bool isDisplayBufferAlternate() const { return frozenBuffer ? frozenIsAlternate : isCurrentBufferAlternate(); }

    // -- what changed -----------------------------------------------------------------------------------------------------

    std::optional<UpdateRange::Rows> getUpdateRange() const { return changed.rows(); }
    std::optional<UpdateRange::Rows> getScrollInvariantUpdateRange() const { return changedInvariant.rows(); }
    void clearUpdateRange() {
        changed.clear();
        changedInvariant.clear();
    }
    void updateFullScreen() { refresh(0, rowCount - 1); }
    [[gnu::always_inline]] void updateRange(int row, bool scrolling = false) {
        changed.add(row);
        if (!scrolling)
            addScrollInvariant(row);
    }
    void refresh(int startRow, int endRow) {
        updateRange(startRow);
        updateRange(endRow);
    }
    void addScrollInvariant(int row) { addScrollInvariant(row, row); }
    void addScrollInvariant(int firstRow, int lastRow) {
        const int base = activeBuffer->yBase + activeBuffer->linesTop;
        changedInvariant.add(base + firstRow, base + lastRow);
    }

    // -- host side ----------------------------------------------------------------------------------------------------------

    void setDelegate(TerminalDelegate* newDelegate) { tdel = newDelegate; }
    TerminalDelegate* delegate() const { return tdel; }
    void sendResponse(std::string_view text);
    void changeScrollback(std::optional<int> lines);
    void softReset();
    void resetToInitialState();
    void showCursor();
    void hideCursor();
    void setCursorStyle(CursorStyle style);
    void setTitle(std::string_view text);
    void setIconTitle(std::string_view text);
    void setForegroundColor(const Color& color);
    void setBackgroundColor(const Color& color);
    void setCursorColor(const std::optional<Color>& color);
    /// Takes exactly 16 colours; others are ignored.
    void installPalette(std::span<const Color> colors);
    /// Releases hyperlinks of this terminal that no cell carries any more.
    void garbageCollectPayload();

    bool synchronizedOutputActive() const { return syncDeadline.has_value(); }
    /// When a synchronized update ends by itself.
    std::optional<Clock::time_point> synchronizedOutputDeadline() const { return syncDeadline; }
    void expireSynchronizedOutput(Clock::time_point now);
    /// The clock that `feed` reads to end an overdue update; for tests.
    std::function<Clock::time_point()> now = [] { return Clock::now(); };

    /// The default environment of a child: "NAME=value" texts.
    static std::vector<std::string> getEnvironmentVariables(
        const std::optional<std::string>& termName = std::nullopt, bool trueColor = true);

    // -- the parts that control functions work on -------------------------------------------------------------------------

    struct HyperLink {
        Position start; ///< column and absolute row
        std::string payload;
    };
    struct Introducers {
        bool send8bit = false;
        std::string_view CSI() const { return send8bit ? "\x9b" : "\x1b["; }
        std::string_view OSC() const { return send8bit ? "\x9d" : "\x1b]"; }
        std::string_view DCS() const { return send8bit ? "\x90" : "\x1bP"; }
        std::string_view ST() const { return send8bit ? "\x9c" : "\x1b\\"; }
    };

    TerminalOptions options;
    TerminalModes modes;
    CharsetState charsets;
    Palette palette;
    Introducers cc;
    std::optional<HyperLink> hyperLinkTracking;
    std::string terminalTitle;
    std::string iconTitle;
    std::vector<std::string> terminalTitleStack;
    std::vector<std::string> terminalIconStack;
    std::optional<std::string> hostCurrentDirectory;
    std::optional<std::string> hostCurrentDocument;
    Color foregroundColor = Color::defaultForeground;
    Color backgroundColor = Color::defaultBackground;
    std::optional<Color> cursorColor;
    std::unique_ptr<Buffer> normalBuffer;
    std::unique_ptr<Buffer> altBuffer;
    StyleTable styles;
    bool silentLog = true;
    bool userScrolling = false; ///< the view is not at the end of the history

    Buffer& buffer() { return *activeBuffer; }
    const Buffer& buffer() const { return *activeBuffer; }
    const Attribute& curAttr() const { return currentAttribute; }
    void setCurAttr(const Attribute& attribute) {
        currentAttribute = attribute;
        styleIsKnown = false;
    }
    std::uint32_t currentStyle() {
        if (!styleIsKnown) {
            style = styles.idOf(currentAttribute);
            styleIsKnown = true;
        }
        return style;
    }
    /// An erased cell: empty, in the current background.
    [[gnu::always_inline]] Cell erasedCell() {
        if (currentAttribute.bg.kind == Attribute::Color::Kind::defaultColor)
            return {};
        return {0, styles.idOf(currentAttribute.erased())};
    }
    void setWraparound(bool on);
    void setMarginMode(bool on);
    void setInsertMode(bool on);
    void setMouseMode(MouseMode mode);

    void scroll(bool isWrapped);
    void activateAltBuffer();
    void activateNormalBuffer(bool clearAlt);
    void beginSynchronizedOutput();
    void endSynchronizedOutput();
    /// DECCOLM: the column count follows, and the screen starts over.
    void changeColumns(int newCols);
    void resetAllColors();
    void rebuildAnsiPalette(bool notifyDelegate);
    void clearAllKittyImages() {} // images belong to the graphics protocols
    void log(std::string_view text) const;
    void countPayload(TinyAtom atom) { payloads.push_back(atom); }

private:
    void handlePrint(std::span<const std::uint8_t> data) override {
        printing.print(data);
        hasUnfinishedCharacter = printing.hasPutback();
    }
    void handleAscii(std::span<const std::uint8_t> data) override {
        // The commonest case stays within the line.
        if (charsets.active == nullptr && !hasUnfinishedCharacter &&
            activeBuffer->insertWithinLine(data, currentStyle()))
            updateRange(activeBuffer->y());
        else
            handlePrint(data);
    }
    void handleLineEnd() override;
    void printStateReset() override {
        printing.resetPutback();
        hasUnfinishedCharacter = false;
    }
    void dispatchExecute(std::uint8_t code) override;
    void dispatchEsc(std::string_view collect, std::uint8_t final) override;
    void dispatchCsi(const ControlSequence& sequence) override;
    void dispatchOsc(std::int64_t code, std::span<const std::uint8_t> data) override;
    void dispatchApc(std::uint8_t code, std::span<const std::uint8_t> data) override;
    std::unique_ptr<DcsHandler> dcsHandler(std::string_view collect, std::uint8_t final) override;

    void configureParser();
    void setup(bool isReset);
    void resizeBuffers(int newCols, int newRows);
    void bindScroll();
    void collectStyles();
    std::span<const Cell> lineOf(const Buffer& from, int absoluteRow, std::vector<Cell>& scratch) const;

    TerminalDelegate* tdel;
    EscapeSequenceParser parser;
    PrintingPath printing;
    friend class PrintingPath;
    Buffer* activeBuffer = nullptr;
    int columnCount = 0;
    int rowCount = 0;

    Attribute currentAttribute;
    std::uint32_t style = 0;
    bool styleIsKnown = true;

    UpdateRange changed;
    UpdateRange changedInvariant;
    std::unordered_map<std::int64_t, OscHandler> oscHandlers;
    std::vector<TinyAtom> payloads; // made by this terminal

    std::optional<Buffer> frozenBuffer;
    bool frozenIsAlternate = false;
    std::optional<Clock::time_point> syncDeadline;
    bool settingFgColor = false;
    bool settingBgColor = false;
    bool settingCursorColor = false;
};

}
