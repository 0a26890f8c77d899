#include "app/app_state.h"

#include "app/consent_question.h"
#include "app/provider_settings.h"
#include "media/speech_locale.h"

namespace tavrelon::app {

using input::InputState;

namespace {

/// How many requests the history keeps, whatever the settings say.
constexpr int historyCap = 20;

/// How many inputs an update of the learned prompt takes.
constexpr int learningInterval = 40;

/// The pause between two pictures of a recording, and how many are kept.
constexpr std::chrono::milliseconds frameInterval{500};
constexpr std::size_t maxFrames = 24;

/// Pixels. Models on a machine of one's own work at that size or a smaller one, and each frame costs them seconds.
constexpr double longestSideForOllama = 1024;

capture::ScreenshotMode screenshotModeNamed(const QString& name) {
    if (name == QLatin1StringView("fullScreen"))
        return capture::ScreenshotMode::fullScreen;
    if (name == QLatin1StringView("none"))
        return capture::ScreenshotMode::none;
    return capture::ScreenshotMode::focusedWindow;
}

}  // namespace

AppState::AppState(platform::Platform& platform, platform::UserInterface& userInterface,
                   const generation::ServiceEndpoints& endpoints, StatusIconSetter setStatusIcon)
    : platform_(platform),
      userInterface_(userInterface),
      storageManager_(platform.defaultsStore, platform.fileSystem, platform.log, platform.mainLoop,
                      platform.applicationSupport),
      hotkeyManager_(platform),
      contextCapturer_(platform),
      cursorLocator_(platform.accessibility),
      outputWriter_(platform),
      historyManager_(platform.fileSystem, platform.log, platform.applicationSupport, historyCap),
      speechRecognizer_(platform),
      videoRecorder_(platform, contextCapturer_.screenshots, frameInterval, maxFrames),
      hotkeyStatusHUDController_(platform.mainLoop, userInterface, [this] { return language(); }),
      pollinationsService_(platform.mainLoop, platform.httpSession, platform.log, endpoints),
      consent_(platform.mainLoop, platform.defaultsStore),
      undoOffers_(platform.mainLoop) {
    if (storageManager_.isNew())
        speakAsTheSession();
    enforceProviderExclusivity(storageManager_);
    adoptWhatWasTaught(storageManager_);
    serviceSubscription_ = followSettings(storageManager_, pollinationsService_);
    cloneService_ =
        std::make_unique<learning::CloneService>(platform.httpSession, platform.documentReader, pollinationsService_,
                                                 storageManager_.settings().cloneApiBaseURL, endpoints.cloneApiBaseURL);
    adaptivePromptLearner_ = std::make_unique<learning::AdaptivePromptLearner>(
        platform.mainLoop, platform.fileSystem, platform.log, platform.serialQueues, storageManager_,
        pollinationsService_, historyManager_, learningInterval);
    aiService_ = std::make_unique<generation::TavrelonAIService>(pollinationsService_, sceneRouter_, platform.log);
    generator_ = std::make_unique<AIGenerator>(*aiService_, pollinationsService_, consent_);
    inputStateMachine_ = std::make_shared<input::InputStateMachine>(
        input::InputServices{platform, contextCapturer_, *generator_, outputWriter_, historyManager_, storageManager_,
                             adaptivePromptLearner_.get(), videoRecorder_});
    speechRecognizer_.chooseLocale = [this](const QStringList& installed) {
        return media::speechLocale(installed, storageManager_.settings().speechLocale,
                                   storageManager_.settings().appLanguage);
    };
    inputStateMachine_->setSpeechRecognizer(speechRecognizer_);
    makeViews(userInterface, std::move(setStatusIcon));
    setCallbacks();
    applyHotkeySettings();
    hotkeyManager_.setStateMachine(inputStateMachine_);
    userInterface.application.setOnActiveChanged(
        [this](bool isActive) { hotkeyManager_.setOwnWindowActive(isActive); });
    applyCaptureSettings();
    historySubscription_ = historyManager_.onChange([this] { noteFirstAnswer(); });
    noteFirstAnswer();
    settingsSubscription_ = storageManager_.onChange([this] { applyCaptureSettings(); });
    outputWriter_.keepsClipboard = [this] { return storageManager_.settings().keepClipboard; };
}

AppState::~AppState() {
    userInterface_.application.setOnActiveChanged(nullptr);
}

/// Until the user chooses, the interface has the first of the session's languages that it knows.
void AppState::speakAsTheSession() {
    for (const auto& language : platform_.sessionLanguages) {
        const auto code = language.section(u'-', 0, 0);
        if (code != QLatin1StringView("en") && code != QLatin1StringView("zh"))
            continue;
        storageManager_.changeSettings([&](persistence::AppSettings& settings) { settings.appLanguage = code; });
        return;
    }
}

void AppState::noteFirstAnswer() {
    if (historyManager_.entries().empty() || storageManager_.settings().hasAnswered)
        return;
    storageManager_.changeSettings([](persistence::AppSettings& settings) { settings.hasAnswered = true; });
    storageManager_.saveSettings();
}

Readiness AppState::readiness() const {
    const auto& settings = storageManager_.settings();
    const auto& services = pollinationsService_.configuration;
    const bool hasModel = settings.enableCustomPollinations || settings.enableOllamaVision ||
                          services.effectivePollinationsApiKey() || services.effectiveNvidiaApiKey() ||
                          services.glmApiKey();
    if (!hotkeyManager_.isListening())
        return Readiness::noKeyboardAccess;
    if (!settings.hotkeysEnabled)
        return Readiness::hotkeysOff;
    return hasModel ? Readiness::active : Readiness::noModel;
}

std::optional<QRectF> AppState::caretRect() {
    const auto caret = cursorLocator_.caretRect();
    return caret ? std::optional(QRectF(caret->origin.x, caret->origin.y, caret->size.width, caret->size.height))
                 : std::nullopt;
}

std::optional<QRectF> AppState::frontWindowRect() {
    const auto place = platform_.workspace.frontmostWindowPlace();
    return place ? std::optional(QRectF(place->x, place->y, place->width, place->height)) : std::nullopt;
}

text::Language AppState::language() const {
    return storageManager_.settings().appLanguage == QLatin1StringView("en") ? text::Language::English
                                                                             : text::Language::Chinese;
}

void AppState::makeViews(platform::UserInterface& userInterface, StatusIconSetter setStatusIcon) {
    const auto caret = [this] { return caretRect(); };
    inputHUDController_ = std::make_unique<ui::InputHUDWindowController>(
        ui::InputHUDWindowController::Desktop{
            platform_.mainLoop, userInterface, caret, [this] { return frontWindowRect(); }, std::move(setStatusIcon),
            [this] { return generator_->lastAsked(); }, [this] { return language(); }},
        inputStateMachine_);
    floatingInputController_ = std::make_unique<ui::FloatingInputWindowController>(
        ui::FloatingInputWindowController::Desktop{platform_.mainLoop, platform_.workspace, userInterface, caret},
        inputStateMachine_, [this] { return language() == text::Language::English; });
}

void AppState::askForConsent(const std::optional<ServiceConsent::Question>& question) {
    hotkeyManager_.setQuestionOnShow(question.has_value());
    inputHUDController_->ask(question ? std::optional(consentQuestion(*question, storageManager_.settings()))
                                      : std::nullopt);
}

void AppState::applyHotkeySettings() {
    static_cast<keys::HotkeySet&>(hotkeyManager_) = storageManager_.settings();
    hotkeyManager_.refresh();
}

void AppState::applyCaptureSettings() {
    const auto& settings = storageManager_.settings();
    const bool seesNothing =
        settings.enableCustomPollinations && !pollinationsService_.configuration.ownModelTakesPictures;
    contextCapturer_.screenshots.screenshotMode =
        seesNothing ? capture::ScreenshotMode::none : screenshotModeNamed(settings.screenshotMode);
    videoRecorder_.longestSide = settings.enableOllamaVision ? longestSideForOllama : 0;
    contextCapturer_.screenshots.screenshotQuality = settings.screenshotQuality;
    contextCapturer_.screenshots.maxScreenshotWidth = static_cast<double>(settings.maxScreenshotWidth);
}

/// The work runs a turn later, as all changes of the input's state do.
template <typename Work>
hotkeys::HotkeyManager::Callback AppState::nextTurn(Work work) {
    return [this, work] { platform_.mainLoop.post(lifetime_.guard(work)); };
}

void AppState::setCallbacks() {
    consent_.show = lifetime_.guard([this](const auto& question) { askForConsent(question); });
    adaptivePromptLearner_->askOnlyIf([this] {
        constexpr auto texts = generation::RequestContents::Text;
        return consent_.isAllowed(generation::destinations(pollinationsService_.configuration, texts), texts);
    });
    hotkeyManager_.onVoiceHotkeyPressed = nextTurn([this] { inputStateMachine_->handleVoiceHotkey(); });
    adaptivePromptLearner_->scheduleEvaluation();
    hotkeyManager_.onVoiceDictationHotkeyPressed =
        nextTurn([this] { inputStateMachine_->handleVoiceDictationHotkey(); });
    hotkeyManager_.onAutoReplyHotkeyPressed = nextTurn([this] { inputStateMachine_->startAutoReply(); });
    hotkeyManager_.onToggleAllHotkeysPressed = nextTurn([this] { toggleAllHotkeys(); });
    hotkeyManager_.onConfirmPressed = nextTurn([this] { consent_.confirm(); });
    hotkeyManager_.onVideoHotkeyPressed = nextTurn([this] { toggleVideo(); });
    hotkeyManager_.onFloatingInputHotkeyPressed = nextTurn([this] { togglePromptBox(); });
}

void AppState::toggleAllHotkeys() {
    const bool enabled = !storageManager_.settings().hotkeysEnabled;
    storageManager_.changeSettings(
        [enabled](persistence::AppSettings& settings) { settings.hotkeysEnabled = enabled; });
    storageManager_.saveSettings();
    hotkeyManager_.hotkeysEnabled = enabled;
    hotkeyManager_.refresh();
    hotkeyStatusHUDController_.show(enabled);
}

void AppState::togglePromptBox() {
    const bool opens = !floatingInputController_->isVisible() && inputStateMachine_->isNewInputPossible();
    if (!opens || inputStateMachine_->ensureNoPasswordField())
        floatingInputController_->toggle();
}

void AppState::toggleVideo() {
    switch (inputStateMachine_->currentState().value) {
        case InputState::Case::listening:
        case InputState::Case::listeningVoice:
        case InputState::Case::processing:
            break;
        case InputState::Case::recordingVideo:
            inputStateMachine_->stopVideoInput();
            break;
        default:
            inputStateMachine_->startVideoInput();
    }
}

}  // namespace tavrelon::app
