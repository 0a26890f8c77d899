#include "ui/hud/input_hud_window_controller.h"

#include <chrono>

namespace tavrelon::ui {

using namespace std::chrono_literals;
using input::InputState;
using Case = InputState::Case;

namespace {

/// How long a result or a failure stays in sight. The user's settings have no say in it.
constexpr auto returnDelay = 2s;

}  // namespace

InputHUDWindowController::InputHUDWindowController(Desktop desktop,
                                                   std::shared_ptr<input::InputStateMachine> stateMachine)
    : desktop_(std::move(desktop)), stateMachine_(std::move(stateMachine)) {
    stateSubscription_ = stateMachine_->bindableCurrentState().addNotifier([this] {
        desktop_.mainLoop.post(lifetime_.guard([this, state = stateMachine_->currentState()] { react(state); }));
    });
    transcriptSubscription_ = stateMachine_->bindableCurrentTranscript().addNotifier(
        [this] { model_.setTranscript(stateMachine_->currentTranscript()); });
}

void InputHUDWindowController::react(const InputState& state) {
    resize(state);
    model_.show(state, stateMachine_->activeTrigger());
    switch (state.value) {
        case Case::idle:
            if (window_)
                window_->orderOut();
            break;
        case Case::listening:
        case Case::listeningVoice:
        case Case::recordingVideo:
            placeAndShow(state);
            break;
        case Case::processing:
            if (!window_ || !window_->isVisible())
                placeAndShow(state);
            break;
        case Case::completed:
        case Case::error:
            scheduleReturnToIdle();
            break;
    }
    desktop_.setStatusIcon(statusSymbol(state));
}

void InputHUDWindowController::resize(const InputState& state) {
    const auto size = hudContentSize(state, stateMachine_->activeTrigger());
    if (size == contentSize_)
        return;
    contentSize_ = size;
    if (window_)
        window_->setContentSize(size);
}

void InputHUDWindowController::placeAndShow(const InputState& state) {
    if (!window_)
        window_ = desktop_.userInterface.panels.create(
            {platform::PanelKind::Overlay, contentSize_, QStringLiteral("hud/InputHUDView"), &model_});
    window_->setFrameOrigin(hudOrigin(state, desktop_.caretRect(), desktop_.userInterface.screens.mainScreen()));
    window_->orderFront();
}

void InputHUDWindowController::scheduleReturnToIdle() {
    returns_.push_back(desktop_.mainLoop.after(returnDelay, [this] { returnToIdle(); }));
}

void InputHUDWindowController::returnToIdle() {
    returns_.pop_front();  // all wait equally long, so it is the oldest that is due
    stateMachine_->returnToIdle();
}

}  // namespace tavrelon::ui
