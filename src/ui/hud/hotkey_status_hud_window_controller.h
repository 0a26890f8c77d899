#pragma once

#include <deque>
#include <memory>

#include "async/lifetime.h"
#include "async/main_loop.h"
#include "platform/user_interface.h"
#include "ui/hud/hotkey_status_hud_model.h"

namespace tavrelon::ui {

/// Confirms for about a second and a half that all hotkeys were switched on or off.
class HotkeyStatusHUDWindowController {
 public:
    HotkeyStatusHUDWindowController(async::MainLoop& mainLoop, platform::UserInterface& userInterface,
                                    std::function<HUDLanguage()> language)
        : mainLoop_(mainLoop), userInterface_(userInterface), language_(std::move(language)) {}
    HotkeyStatusHUDWindowController(const HotkeyStatusHUDWindowController&) = delete;
    HotkeyStatusHUDWindowController& operator=(const HotkeyStatusHUDWindowController&) = delete;

    /// Shows the new state of the hotkeys, in a later turn. Any thread.
    void show(bool enabled);

 private:
    void showNow(bool enabled);
    void hide();
    void place();

    async::MainLoop& mainLoop_;
    platform::UserInterface& userInterface_;
    std::function<HUDLanguage()> language_;
    HotkeyStatusHUDModel model_;
    std::unique_ptr<platform::Panel> window_;  ///< built at the first showing, then kept
    async::Timer hideWorkItem_;
    std::deque<async::Timer> fadeOuts_;
    async::Lifetime lifetime_;
};

}  // namespace tavrelon::ui
