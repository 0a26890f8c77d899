#pragma once

#include <QProperty>
#include <chrono>
#include <functional>
#include <memory>

#include "async/lifetime.h"
#include "async/main_loop.h"
#include "input/input_state_machine.h"
#include "platform/user_interface.h"
#include "ui/hud/input_hud_model.h"

namespace tavrelon::ui {

/// Follows the input state machine: shows, resizes, places and hides the small overlay that tells what is going on,
/// keeps the status item's icon in step, and returns a finished or failed machine to idle. Main thread.
class InputHUDWindowController {
 public:
    struct Desktop {
        async::MainLoop& mainLoop;
        platform::UserInterface& userInterface;
        std::function<std::optional<QRectF>()> caretRect;   ///< counts from the top left of the desktop
        std::function<std::optional<QRectF>()> windowRect;  ///< of the window in front, likewise
        /// `reason` is why the last input failed, until one succeeds.
        std::function<void(const QString& symbolName, const std::optional<QString>& reason)> setStatusIcon;
        std::function<QString()> serviceName;  ///< who answers requests
        std::function<HUDLanguage()> language;
    };

    /// Works by itself from here on. `stateMachine` is not null.
    InputHUDWindowController(Desktop desktop, std::shared_ptr<input::InputStateMachine> stateMachine);
    InputHUDWindowController(const InputHUDWindowController&) = delete;
    InputHUDWindowController& operator=(const InputHUDWindowController&) = delete;

    /// Asks in place of what is shown, or shows that again where there is no question.
    void ask(const std::optional<HUDQuestion>& question);

 private:
    void react(const input::InputState& state);
    void placeAndShow(const input::InputState& state);
    void resize(const input::InputState& state);
    void place();
    std::optional<platform::Screen> screenOf(const std::optional<QRectF>& caret);
    QRectF upward(const QRectF& rectangle);
    void scheduleReturnToIdle(std::chrono::milliseconds delay);
    void bePatient();
    void sayWhoIsWaitedFor();

    Desktop desktop_;
    std::shared_ptr<input::InputStateMachine> stateMachine_;
    InputHUDModel model_;
    std::unique_ptr<platform::Panel> window_;  ///< built when first needed, then kept
    QSizeF contentSize_;
    input::InputState placedFor_;
    std::optional<QRectF> caret_;  ///< beside which the panel stands; y counts upward
    std::optional<platform::Screen> screen_;
    std::optional<text::LocalizedText> reason_;
    async::Timer return_;  ///< of the last input that ended
    async::Timer patience_;
    QPropertyNotifier stateSubscription_;
    QPropertyNotifier transcriptSubscription_;
    QPropertyNotifier recogniserSubscription_;
    async::Lifetime lifetime_;
};

}  // namespace tavrelon::ui
