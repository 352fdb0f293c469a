#pragma once

#include <variant>

namespace termcore {

/// What CSI t asks of the window (xterm's window operations), in xterm's order.
namespace window {

struct MoveWindowTo {
    int x;
    int y;
    bool operator==(const MoveWindowTo&) const = default;
};
struct ResizeWindowTo {
    int width;
    int height;
    bool operator==(const ResizeWindowTo&) const = default;
};
struct ResizeTo {
    int cols;
    int rows;
    bool operator==(const ResizeTo&) const = default;
};
struct ResizeTerminal {
    int cols;
    int rows;
    bool operator==(const ResizeTerminal&) const = default;
};
struct ResizeToLines {
    int lines;
    bool operator==(const ResizeToLines&) const = default;
};
struct DeiconifyWindow {
    bool operator==(const DeiconifyWindow&) const = default;
};
struct IconifyWindow {
    bool operator==(const IconifyWindow&) const = default;
};
struct BringToFront {
    bool operator==(const BringToFront&) const = default;
};
struct SendToBack {
    bool operator==(const SendToBack&) const = default;
};
struct RefreshWindow {
    bool operator==(const RefreshWindow&) const = default;
};
struct RestoreMaximizedWindow {
    bool operator==(const RestoreMaximizedWindow&) const = default;
};
struct MaximizeWindow {
    bool operator==(const MaximizeWindow&) const = default;
};
struct MaximizeWindowVertically {
    bool operator==(const MaximizeWindowVertically&) const = default;
};
struct MaximizeWindowHorizontally {
    bool operator==(const MaximizeWindowHorizontally&) const = default;
};
struct UndoFullScreen {
    bool operator==(const UndoFullScreen&) const = default;
};
struct SwitchToFullScreen {
    bool operator==(const SwitchToFullScreen&) const = default;
};
struct ToggleFullScreen {
    bool operator==(const ToggleFullScreen&) const = default;
};
struct ReportTerminalState {
    bool operator==(const ReportTerminalState&) const = default;
};
struct ReportTerminalPosition {
    bool operator==(const ReportTerminalPosition&) const = default;
};
struct ReportTextAreaPosition {
    bool operator==(const ReportTextAreaPosition&) const = default;
};
struct ReportTextAreaPixelDimension {
    bool operator==(const ReportTextAreaPixelDimension&) const = default;
};
struct ReportTerminalWindowPixelDimension {
    bool operator==(const ReportTerminalWindowPixelDimension&) const = default;
};
struct ReportSizeOfScreenInPixels {
    bool operator==(const ReportSizeOfScreenInPixels&) const = default;
};
struct ReportCellSizeInPixels {
    bool operator==(const ReportCellSizeInPixels&) const = default;
};
struct ReportTextAreaCharacters {
    bool operator==(const ReportTextAreaCharacters&) const = default;
};
struct ReportScreenSizeCharacters {
    bool operator==(const ReportScreenSizeCharacters&) const = default;
};
struct ReportIconLabel {
    bool operator==(const ReportIconLabel&) const = default;
};
struct ReportWindowTitle {
    bool operator==(const ReportWindowTitle&) const = default;
};

}

using WindowManipulationCommand = std::variant<window::MoveWindowTo, window::ResizeWindowTo, window::ResizeTo,
    window::ResizeTerminal, window::ResizeToLines, window::DeiconifyWindow, window::IconifyWindow, window::BringToFront,
    window::SendToBack, window::RefreshWindow, window::RestoreMaximizedWindow, window::MaximizeWindow,
    window::MaximizeWindowVertically, window::MaximizeWindowHorizontally, window::UndoFullScreen,
    window::SwitchToFullScreen, window::ToggleFullScreen, window::ReportTerminalState, window::ReportTerminalPosition,
    window::ReportTextAreaPosition, window::ReportTextAreaPixelDimension, window::ReportTerminalWindowPixelDimension,
    window::ReportSizeOfScreenInPixels, window::ReportCellSizeInPixels, window::ReportTextAreaCharacters,
    window::ReportScreenSizeCharacters, window::ReportIconLabel, window::ReportWindowTitle>;

}
