#include "desktop/x11/windows/x11_terminal_shortcuts.h"

#include <utility>

#include "desktop/linux/process/process_info.h"

namespace tavrelon::desktop {

using namespace std::chrono_literals;

namespace {

/// A copy that came later would stay on the user's clipboard: nobody waits for it any more.
constexpr SelectionReadLimits copyLimits{.answer = 50ms, .total = 50ms};

}  // namespace

std::expected<std::unique_ptr<X11TerminalShortcuts>, QString> X11TerminalShortcuts::create(
    async::MainLoop& loop, platform::Log& log, X11Pasteboard& pasteboard, const QByteArray& displayName) {
    auto windows = X11WindowQueries::open(displayName);
    if (!windows)
        return std::unexpected(windows.error());
    auto primary = X11Pasteboard::create(loop, log, displayName, copyLimits, SelectionName::Primary);
    if (!primary)
        return std::unexpected(primary.error());
    return std::unique_ptr<X11TerminalShortcuts>(
        new X11TerminalShortcuts(loop, pasteboard, std::move(*windows), std::move(*primary)));
}

std::optional<KeyChord> X11TerminalShortcuts::translate(KeyChord asked) {
    const bool isShortcut = asked.flags == keys::commandFlag &&
                            (asked.key == keys::keyC || asked.key == keys::keyV || asked.key == keys::keyA);
    if (!isShortcut)
        return asked;
    const auto window = windows_->activeWindow();
    if (window == XCB_NONE)
        return asked;
    const auto found = windows_->properties(window);
    const auto terminal = terminalShortcutsOf(found.windowClass, found.windowInstance);
    if (!terminal)
        return asked;
    if (asked.key == keys::keyC)
        return copy(*terminal, window);
    if (asked.key == keys::keyV)
        return paste(*terminal);
    // A code editor's text takes select-all, but the caret may be in one of its terminals.
    return std::nullopt;
}

std::optional<KeyChord> X11TerminalShortcuts::copy(const TerminalShortcuts& known, xcb_window_t window) {
    if (known.copy == TerminalShortcuts::Copy::ByChord)
        return known.copyChord;
    // The selection may be another application's, which would be no copy of this terminal's.
    if (known.copy == TerminalShortcuts::Copy::OfPrimary && windows_->ownsPrimarySelection(window))
        copies_.spawn(copyPrimary());
    return std::nullopt;
}

std::optional<KeyChord> X11TerminalShortcuts::paste(const TerminalShortcuts& known) {
    if (known.paste == TerminalShortcuts::Paste::OfClipboard)
        return known.pasteChord;
    if (known.paste == TerminalShortcuts::Paste::Never)
        return std::nullopt;
    // A picture, or a selection that was refused: the terminal would paste whatever somebody else has selected.
    if (!pasteboard_.lastString() || !primary_->setString(*pasteboard_.lastString()))
        return std::nullopt;
    pasteboard_.alsoFetchedFrom(*primary_);
    return primaryPasteChord;
}

bool X11TerminalShortcuts::takesChordsTwice() {
    const auto window = windows_->activeWindow();
    const auto process = window == XCB_NONE ? 0 : windows_->properties(window).processIdentifier;
    if (process != std::exchange(lastProcess_, process))
        isLastWebEngine_.reset();
    if (!isLastWebEngine_) {
        const auto files = mappedFilesOf(process);
        const bool isWebEngine = files.contains("WebEngineCore");
        // The engine stays where it was loaded, and may come late, with the first page, but only to programs of Qt.
        if (isWebEngine || !files.contains("Qt"))
            isLastWebEngine_ = isWebEngine;
    }
    return isLastWebEngine_.value_or(false);
}

async::Task<void> X11TerminalShortcuts::copyPrimary() {
    if (const auto selected = co_await primary_->string())
        pasteboard_.setString(*selected);
}

}  // namespace tavrelon::desktop
