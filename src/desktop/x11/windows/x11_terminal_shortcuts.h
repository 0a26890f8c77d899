#pragma once

#include <memory>

#include "async/task_scope.h"
#include "desktop/applications/terminal_shortcuts.h"
#include "desktop/x11/selection/x11_pasteboard.h"
#include "desktop/x11/windows/x11_window_queries.h"

namespace tavrelon::desktop {

/// Gives the terminal in front the shortcuts that it knows. Where a terminal pastes the primary selection, the text of
/// our pasteboard is offered there before the key, and stays until something else is selected. Where it copies without
/// a key, what is selected in it is put on the pasteboard for it, within 50 ms or not at all. Select-all is not pressed
/// in terminals. Main thread.
class X11TerminalShortcuts : public ShortcutTranslator {
 public:
    /// The error is a sentence for the log. The referents must outlive this object.
    static std::expected<std::unique_ptr<X11TerminalShortcuts>, QString> create(async::MainLoop& loop,
                                                                                platform::Log& log,
                                                                                X11Pasteboard& pasteboard,
                                                                                const QByteArray& displayName = {});

    std::optional<KeyChord> translate(KeyChord asked) override;

    /// Pages of Qt's web engine do, while accessibility is on: Qt then holds each key back until the bus has answered,
    /// and the engine gives the command of a key that overtakes its modifier to both.
    bool takesChordsTwice() override;

 private:
    X11TerminalShortcuts(async::MainLoop& loop, X11Pasteboard& pasteboard, std::unique_ptr<X11WindowQueries> windows,
                         std::unique_ptr<X11Pasteboard> primary)
        : pasteboard_(pasteboard), windows_(std::move(windows)), primary_(std::move(primary)), copies_(loop) {}

    std::optional<KeyChord> copy(const TerminalShortcuts& known, xcb_window_t window);
    std::optional<KeyChord> paste(const TerminalShortcuts& known);
    async::Task<void> copyPrimary();

    X11Pasteboard& pasteboard_;
    std::unique_ptr<X11WindowQueries> windows_;
    std::unique_ptr<X11Pasteboard> primary_;
    async::TaskScope copies_;
    qint64 lastProcess_ = 0;
    std::optional<bool> isLastWebEngine_;  ///< absent while it may still change
};

}  // namespace tavrelon::desktop
