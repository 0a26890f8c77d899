#include "ui/hud/hotkey_status_hud_window_controller.h"

namespace tavrelon::ui {

using namespace std::chrono_literals;

namespace {

constexpr QSizeF contentSize{260, 80};
constexpr double distanceFromTop = 80;
constexpr auto fadeInDuration = 120ms;
constexpr auto fadeOutDuration = 180ms;
constexpr auto timeInSight = 1400ms;

}  // namespace

void HotkeyStatusHUDWindowController::show(bool enabled) {
    mainLoop_.post(lifetime_.guard([this, enabled] { showNow(enabled); }));
}

void HotkeyStatusHUDWindowController::showNow(bool enabled) {
    if (!window_)
        window_ = userInterface_.panels.create(
            {platform::PanelKind::StatusOverlay, contentSize, QStringLiteral("hud/HotkeyStatusHUDView"), &model_});
    model_.show(enabled, language_());
    place();
    window_->setAlpha(0, 0ms);
    window_->orderFront();
    window_->setAlpha(1, fadeInDuration);
    hideWorkItem_ = mainLoop_.after(timeInSight, [this] { hide(); });
}

void HotkeyStatusHUDWindowController::hide() {
    window_->setAlpha(0, fadeOutDuration);
    // A showing during the fade does not call this off: the panel goes when the earlier fade was to end.
    fadeOuts_.push_back(mainLoop_.after(fadeOutDuration, [this] {
        fadeOuts_.pop_front();
        window_->orderOut();
    }));
}

void HotkeyStatusHUDWindowController::place() {
    const auto screen = userInterface_.screens.screenAt(userInterface_.screens.mouseLocation());
    if (!screen)
        return;
    const auto& area = screen->visibleFrame;
    const auto size = window_->frameSize();
    window_->setFrameOrigin(
        {area.center().x() - size.width() / 2, area.bottom() - size.height() - distanceFromTop * screen->scale});
}

}  // namespace tavrelon::ui
