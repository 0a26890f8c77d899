#include "ui/floating/floating_input_window_controller.h"

#include <algorithm>

#include "async/waits.h"
#include "text/characters.h"

namespace tavrelon::ui {

using namespace std::chrono_literals;

namespace {

constexpr QSizeF contentSize{420, 74};
constexpr double distanceFromCaret = 12;

/// Time for the earlier application to get its focus back, and the most that is waited beyond it for one that is slow.
constexpr auto focusPause = 80ms;
constexpr auto focusLimit = 2s;
constexpr auto focusPollInterval = 10ms;

/// The upper limit wins where the range is empty.
double clamped(double value, double lowest, double highest) {
    return std::min(std::max(value, lowest), highest);
}

}  // namespace

FloatingInputWindowController::FloatingInputWindowController(Desktop desktop,
                                                             std::shared_ptr<input::InputStateMachine> stateMachine,
                                                             std::function<bool()> isEnglishProvider)
    : desktop_(std::move(desktop)),
      stateMachine_(std::move(stateMachine)),
      isEnglishProvider_(std::move(isEnglishProvider)),
      tasks_(desktop_.mainLoop) {
    model_.onSubmit = [this] { submit(); };
    model_.onCancel = [this] { cancel(); };
}

void FloatingInputWindowController::show() {
    if (!stateMachine_->currentState().acceptsNewInput())
        return;
    previousApp_ = desktop_.workspace.frontmostApplication();
    model_.setText(QString());
    model_.setIsEnglish(isEnglishProvider_());
    if (!window_)
        window_ = desktop_.userInterface.panels.create(
            {platform::PanelKind::PromptBox, contentSize, QStringLiteral("floating/FloatingInputView"), &model_});
    place();
    window_->makeKeyAndOrderFront();
    model_.renewFocusToken();
}

void FloatingInputWindowController::toggle() {
    if (isVisible())
        close();
    else
        show();
}

void FloatingInputWindowController::place() {
    const auto mainScreen = desktop_.userInterface.screens.mainScreen();
    if (!mainScreen)
        return;
    const auto size = window_->frameSize();
    const auto caret = desktop_.caretRect();
    if (!caret) {
        window_->setFrameOrigin(mainScreen->frame.center() - QPointF(size.width(), size.height()) / 2);
        return;
    }
    const double lowerEdge = mainScreen->frame.height() - caret->y() - caret->height();
    const auto screen = desktop_.userInterface.screens.screenAt({caret->x(), lowerEdge}).value_or(*mainScreen);
    const auto& area = screen.visibleFrame;
    window_->setFrameOrigin({clamped(caret->x(), area.left(), area.right() - size.width()),
                             clamped(lowerEdge + caret->height() + distanceFromCaret * screen.scale, area.top(),
                                     area.bottom() - size.height())});
}

void FloatingInputWindowController::submit() {
    const auto text = model_.text();
    model_.setText(QString());
    close();
    if (!text::trimmed(text).isEmpty())
        tasks_.spawn(send(text));
}

void FloatingInputWindowController::cancel() {
    close();
}

void FloatingInputWindowController::close() {
    if (window_)
        window_->orderOut();
    auto& workspace = desktop_.workspace;
    if (previousApp_ && !workspace.isTerminated(*previousApp_))
        workspace.activate(*previousApp_);
}

bool FloatingInputWindowController::hasFocusBack() const {
    auto& workspace = desktop_.workspace;
    return !previousApp_ || workspace.isTerminated(*previousApp_) || workspace.hasKeyboard(*previousApp_);
}

async::Task<void> FloatingInputWindowController::send(QString text) {
    auto& loop = desktop_.mainLoop;
    co_await async::ignoringCancellation(async::pause(loop, focusPause));
    const auto deadline = loop.now() + focusLimit;
    while (!hasFocusBack() && loop.now() < deadline)
        co_await async::ignoringCancellation(async::pause(loop, focusPollInterval));
    stateMachine_->submitFloatingInput(text, previousApp_);
}

}  // namespace tavrelon::ui
