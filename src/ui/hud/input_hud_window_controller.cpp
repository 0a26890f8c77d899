#include "ui/hud/input_hud_window_controller.h"

#include <algorithm>
#include <chrono>

namespace tavrelon::ui {

using namespace std::chrono_literals;
using input::InputState;
using Case = InputState::Case;

namespace {

/// How long a result stays in sight, and a failure with its reason. The user's settings have no say in it.
constexpr auto resultDelay = 2s;
constexpr auto failureDelay = 4s;

/// How long a service may take without a word to the user.
constexpr auto patience = 10s;

}  // namespace

InputHUDWindowController::InputHUDWindowController(Desktop desktop,
                                                   std::shared_ptr<input::InputStateMachine> stateMachine)
    : desktop_(std::move(desktop)), stateMachine_(std::move(stateMachine)) {
    stateSubscription_ = stateMachine_->bindableCurrentState().addNotifier([this] {
        desktop_.mainLoop.post(lifetime_.guard([this, state = stateMachine_->currentState()] { react(state); }));
    });
    transcriptSubscription_ = stateMachine_->bindableCurrentTranscript().addNotifier(
        [this] { model_.setTranscript(stateMachine_->currentTranscript()); });
    recogniserSubscription_ = stateMachine_->bindableIsRecogniserLoading().addNotifier(
        [this] { model_.setRecogniserLoading(stateMachine_->isRecogniserLoading()); });
}

void InputHUDWindowController::react(const InputState& state) {
    resize(state);
    model_.show(state, stateMachine_->activeTrigger(), desktop_.language());
    bePatient();
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
        case Case::error:
            if (!window_ || !window_->isVisible())  // it may be all that is seen of an input that was refused
                placeAndShow(state);
            reason_ = stateMachine_->lastError();
            scheduleReturnToIdle(failureDelay);
            break;
        case Case::completed:
            reason_.reset();
            scheduleReturnToIdle(resultDelay);
            break;
    }
    desktop_.setStatusIcon(statusSymbol(state),
                           reason_ ? std::optional(reason_->in(desktop_.language())) : std::nullopt);
}

void InputHUDWindowController::resize(const InputState& state) {
    const auto size = model_.isAsking() ? hudQuestionSize : hudContentSize(state, stateMachine_->activeTrigger());
    if (size == contentSize_)
        return;
    contentSize_ = size;
    if (!window_)
        return;
    window_->setContentSize(size);
    place();
}

void InputHUDWindowController::placeAndShow(const InputState& state) {
    if (!window_)
        window_ = desktop_.userInterface.panels.create(
            {platform::PanelKind::Overlay, contentSize_, QStringLiteral("hud/InputHUDView"), &model_});
    const auto caret = desktop_.caretRect();
    placedFor_ = state;
    caret_ = caret ? std::optional(upward(*caret)) : std::nullopt;
    screen_ = screenOf(caret_);
    place();
    window_->orderFront();
}

QRectF InputHUDWindowController::upward(const QRectF& rectangle) {
    const auto main = desktop_.userInterface.screens.mainScreen();
    const double height = main ? main->frame.height() : 0;
    return {rectangle.x(), height - rectangle.y() - rectangle.height(), rectangle.width(), rectangle.height()};
}

std::optional<platform::Screen> InputHUDWindowController::screenOf(const std::optional<QRectF>& caret) {
    auto& screens = desktop_.userInterface.screens;
    if (caret)
        return screens.screenAt(caret->topLeft());
    const auto window = desktop_.windowRect();
    return window ? screens.screenAt(upward(*window).center()) : screens.mainScreen();
}

void InputHUDWindowController::place() {
    if (screen_)
        window_->setFrameOrigin(hudOrigin(placedFor_, caret_, *screen_, window_->frameSize()));
}

void InputHUDWindowController::ask(const std::optional<HUDQuestion>& question) {
    model_.setQuestion(question);
    const auto state = stateMachine_->currentState();
    resize(state);
    bePatient();  // while the user reads nobody has been asked yet
    if (question && (!window_ || !window_->isVisible()))
        placeAndShow(state);
}

void InputHUDWindowController::scheduleReturnToIdle(std::chrono::milliseconds delay) {
    return_ = desktop_.mainLoop.after(delay, [this] { stateMachine_->returnToIdle(); });
}

void InputHUDWindowController::bePatient() {
    const bool isServiceWaitedFor = stateMachine_->currentState() == Case::processing && !model_.isAsking();
    patience_ =
        isServiceWaitedFor ? desktop_.mainLoop.after(patience, [this] { sayWhoIsWaitedFor(); }) : async::Timer();
}

void InputHUDWindowController::sayWhoIsWaitedFor() {
    model_.setWaitingFor(desktop_.serviceName());
    contentSize_ = hudWaitingSize(stateMachine_->currentState(), stateMachine_->activeTrigger());
    if (!window_)
        return;
    window_->setContentSize(contentSize_);
    place();
}

}  // namespace tavrelon::ui
