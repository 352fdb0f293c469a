#pragma once

#include "Terminal/Terminal.h"
#include "Tool/ScreenDump.h"

#include <string>
#include <vector>

namespace termcore::test {

/// A host that writes down what it is told.
struct TestHost : TerminalDelegate {
    std::string replies;
    std::vector<std::string> events;
    bool isTrusted = true;
    std::optional<std::string> windowReply;

    void note(std::string event) { events.push_back(std::move(event)); }
    static std::string text(Bytes data) { return {data.begin(), data.end()}; }

    void send(Terminal&, Bytes data) override { replies += text(data); }
    std::pair<Color, Color> getColors(Terminal& t) override { return {t.foregroundColor, t.backgroundColor}; }
    bool isProcessTrusted(Terminal&) override { return isTrusted; }
    std::optional<std::string> windowCommand(Terminal&, const WindowManipulationCommand& command) override {
        std::string values;
        if (const auto* place = std::get_if<window::MoveWindowTo>(&command))
            values = " " + std::to_string(place->x) + " " + std::to_string(place->y);
        if (const auto* size = std::get_if<window::ResizeWindowTo>(&command))
            values = " " + std::to_string(size->width) + " " + std::to_string(size->height);
        if (const auto* size = std::get_if<window::ResizeTo>(&command))
            values = " " + std::to_string(size->cols) + " " + std::to_string(size->rows);
        note("window command " + std::to_string(command.index()) + values);
        return windowReply;
    }
    void showCursor(Terminal&) override { note("show cursor"); }
    void hideCursor(Terminal&) override { note("hide cursor"); }
    void setTerminalTitle(Terminal&, std::string_view title) override { note("title " + std::string(title)); }
    void setTerminalIconTitle(Terminal&, std::string_view title) override { note("icon " + std::string(title)); }
    void sizeChanged(Terminal& t) override {
        note("size " + std::to_string(t.cols()) + "x" + std::to_string(t.rows()));
    }
    void bufferActivated(Terminal& t) override { note(t.isCurrentBufferAlternate() ? "alternate" : "normal"); }
    void synchronizedOutputChanged(Terminal&, bool active) override { note(active ? "sync on" : "sync off"); }
    void bell(Terminal&) override { note("bell"); }
    void mouseModeChanged(Terminal& t) override {
        note("mouse " + std::to_string(static_cast<int>(t.modes.mouseMode)));
    }
    void cursorStyleChanged(Terminal&, CursorStyle style) override {
        note("cursor style " + std::to_string(static_cast<int>(style)));
    }
    void hostCurrentDirectoryUpdated(Terminal& t) override { note("directory " + *t.hostCurrentDirectory); }
    void hostCurrentDocumentUpdated(Terminal& t) override { note("document " + *t.hostCurrentDocument); }
    void colorChanged(Terminal&, std::optional<int> index) override {
        note("color " + (index ? std::to_string(*index) : std::string("all")));
    }
    void setForegroundColor(Terminal&, const Color& color) override { note("foreground " + color.formatAsXcolor()); }
    void setBackgroundColor(Terminal&, const Color& color) override { note("background " + color.formatAsXcolor()); }
    void setCursorColor(Terminal&, const std::optional<Color>& color) override {
        note("cursor color " + (color ? color->formatAsXcolor() : std::string("none")));
    }
    void iTermContent(Terminal&, Bytes content) override { note("content " + text(content)); }
    void clipboardCopy(Terminal&, Bytes content) override { note("clipboard " + text(content)); }
    void notify(Terminal&, std::string_view title, std::string_view body) override {
        note("notify " + std::string(title) + "|" + std::string(body));
    }
    void progressReport(Terminal&, const ProgressReport& report) override {
        note("progress " + std::to_string(static_cast<int>(report.state)) + " " +
            (report.progress ? std::to_string(*report.progress) : std::string("-")));
    }
    void createImage(Terminal&, Bytes data, ImageSizeRequest width, ImageSizeRequest height, bool keepsRatio) override {
        const auto show = [](ImageSizeRequest r) {
            return std::to_string(static_cast<int>(r.unit)) + ":" + std::to_string(r.amount);
        };
        note("image " + text(data) + " " + show(width) + " " + show(height) + (keepsRatio ? " ratio" : ""));
    }
};

/// All that can be seen of a terminal, as text.
inline std::string state(const Terminal& terminal) {
    return tool::dumpJson(terminal) + tool::dumpScrollback(terminal);
}

inline TerminalOptions sized(int cols, int rows, int scrollback = 100) {
    TerminalOptions options;
    options.cols = cols;
    options.rows = rows;
    options.scrollback = scrollback;
    return options;
}

}
