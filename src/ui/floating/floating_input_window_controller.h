#pragma once

#include <functional>
#include <memory>
#include <optional>

#include "async/task_scope.h"
#include "input/input_state_machine.h"
#include "platform/user_interface.h"
#include "ui/floating/floating_input_model.h"

namespace tavrelon::ui {

/// The prompt box over any application: takes the keyboard, gives it back when it closes, and passes the text on once
/// the earlier application has the keyboard again, so that the answer lands there. Main thread.
class FloatingInputWindowController {
 public:
    struct Desktop {
        async::MainLoop& mainLoop;
        platform::Workspace& workspace;
        platform::UserInterface& userInterface;
        std::function<std::optional<QRectF>()> caretRect;  ///< counts from the top left of the desktop
    };

    /// `stateMachine` is not null; `isEnglishProvider` is asked at each showing.
    FloatingInputWindowController(Desktop desktop, std::shared_ptr<input::InputStateMachine> stateMachine,
                                  std::function<bool()> isEnglishProvider);
    FloatingInputWindowController(const FloatingInputWindowController&) = delete;
    FloatingInputWindowController& operator=(const FloatingInputWindowController&) = delete;

    /// Does nothing while the machine is busy with an input.
    void show();

    /// What the hotkey does: shows the box, or closes it and gives the focus back.
    void toggle();

    void submit();
    void cancel();

    bool isVisible() const { return window_ && window_->isVisible(); }
    FloatingInputModel& model() { return model_; }

 private:
    void place();
    void close();
    bool hasFocusBack() const;
    async::Task<void> send(QString text);

    Desktop desktop_;
    std::shared_ptr<input::InputStateMachine> stateMachine_;
    std::function<bool()> isEnglishProvider_;
    FloatingInputModel model_;
    std::unique_ptr<platform::Panel> window_;  ///< built when first shown, then kept
    std::optional<platform::RunningApplication> previousApp_;
    async::TaskScope tasks_;
};

}  // namespace tavrelon::ui
