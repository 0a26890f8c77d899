#pragma once

#include <memory>

#include "app/ai_generator.h"
#include "app/readiness.h"
#include "app/undo_offers.h"
#include "async/lifetime.h"
#include "capture/context_capturer.h"
#include "capture/cursor_locator.h"
#include "generation/ai_service.h"
#include "generation/pollinations_service.h"
#include "hotkeys/hotkey_manager.h"
#include "input/input_state_machine.h"
#include "learning/adaptive_prompt_learner.h"
#include "learning/clone_service.h"
#include "media/speech_recognizer.h"
#include "media/window_video_recorder.h"
#include "output/output_writer.h"
#include "persistence/history_manager.h"
#include "persistence/storage_manager.h"
#include "platform/user_interface.h"
#include "scenes/scene_router.h"
#include "ui/floating/floating_input_window_controller.h"
#include "ui/hud/hotkey_status_hud_window_controller.h"
#include "ui/hud/input_hud_window_controller.h"

namespace tavrelon::app {

/// Builds every service in a fixed order, wires them, and pushes the stored settings into them. Nothing else makes a
/// service. Main thread; lives as long as the process.
class AppState {
 public:
    /// Gets the name of the symbol that stands for the state of the input, and why the last input failed.
    using StatusIconSetter = std::function<void(const QString& symbolName, const std::optional<QString>& reason)>;

    /// `platform` and `userInterface` outlive this object. Construction has no failure path: what is missing is
    /// defaults.
    AppState(platform::Platform& platform, platform::UserInterface& userInterface,
             const generation::ServiceEndpoints& endpoints, StatusIconSetter setStatusIcon);
    AppState(const AppState&) = delete;
    AppState& operator=(const AppState&) = delete;
    ~AppState();

    persistence::StorageManager& storageManager() { return storageManager_; }
    hotkeys::HotkeyManager& hotkeyManager() { return hotkeyManager_; }
    scenes::SceneRouter& sceneRouter() { return sceneRouter_; }
    persistence::HistoryManager& historyManager() { return historyManager_; }
    generation::PollinationsService& pollinationsService() { return pollinationsService_; }
    learning::AdaptivePromptLearner& adaptivePromptLearner() { return *adaptivePromptLearner_; }
    learning::CloneService& cloneService() { return *cloneService_; }
    input::InputStateMachine& inputStateMachine() { return *inputStateMachine_; }
    ui::HotkeyStatusHUDWindowController& hotkeyStatusHUDController() { return hotkeyStatusHUDController_; }
    ServiceConsent& serviceConsent() { return consent_; }
    UndoOffers& undoOffers() { return undoOffers_; }
    async::MainLoop& mainLoop() { return platform_.mainLoop; }

    /// Of the interface, as it is set at this moment.
    text::Language language() const;

    /// As far as it can be told without asking anybody.
    Readiness readiness() const;

 private:
    void speakAsTheSession();
    void noteFirstAnswer();
    void askForConsent(const std::optional<ServiceConsent::Question>& question);
    void applyHotkeySettings();
    void applyCaptureSettings();
    void setCallbacks();
    void toggleAllHotkeys();
    void togglePromptBox();
    void toggleVideo();
    std::optional<QRectF> caretRect();
    std::optional<QRectF> frontWindowRect();
    void makeViews(platform::UserInterface& userInterface, StatusIconSetter setStatusIcon);
    template <typename Work>
    hotkeys::HotkeyManager::Callback nextTurn(Work work);

    platform::Platform& platform_;
    platform::UserInterface& userInterface_;
    persistence::StorageManager storageManager_;
    hotkeys::HotkeyManager hotkeyManager_;
    capture::ContextCapturer contextCapturer_;
    capture::CursorLocator cursorLocator_;
    scenes::SceneRouter sceneRouter_;
    output::OutputWriter outputWriter_;
    persistence::HistoryManager historyManager_;
    media::SpeechRecognizer speechRecognizer_;
    media::WindowVideoRecorder videoRecorder_;
    ui::HotkeyStatusHUDWindowController hotkeyStatusHUDController_;
    generation::PollinationsService pollinationsService_;
    std::unique_ptr<learning::CloneService> cloneService_;
    std::unique_ptr<learning::AdaptivePromptLearner> adaptivePromptLearner_;
    std::unique_ptr<generation::TavrelonAIService> aiService_;
    ServiceConsent consent_;
    std::unique_ptr<AIGenerator> generator_;
    std::shared_ptr<input::InputStateMachine> inputStateMachine_;
    std::unique_ptr<ui::InputHUDWindowController> inputHUDController_;
    std::unique_ptr<ui::FloatingInputWindowController> floatingInputController_;
    persistence::ChangeSubscription serviceSubscription_;
    persistence::ChangeSubscription settingsSubscription_;
    persistence::ChangeSubscription historySubscription_;
    UndoOffers undoOffers_;
    async::Lifetime lifetime_;
};

}  // namespace tavrelon::app
