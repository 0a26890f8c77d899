#include "app/app_delegate.h"

#include <utility>

namespace tavrelon::app {

AppDelegate::AppDelegate(platform::Platform& platform, platform::UserInterface& userInterface,
                         const generation::ServiceEndpoints& endpoints)
    : platform_(platform),
      userInterface_(userInterface),
      appState_(platform, userInterface, endpoints,
                [this](const QString& symbolName, const auto& reason) { setStatusIcon(symbolName, reason); }) {}

void AppDelegate::applicationDidFinishLaunching(Launch launch) {
    setupStatusItem();
    startHotkeyListener();
    appState_.sceneRouter().updateScenes(appState_.storageManager().scenes());
    if (launch == Launch::WithDashboard)
        openDashboard();
}

void AppDelegate::applicationWillTerminate() {
    appState_.hotkeyManager().stopListening();
}

void AppDelegate::suspend() {
    auto& machine = appState_.inputStateMachine();
    if (machine.currentState() != input::InputState::Case::processing)
        machine.cancelInput();
    appState_.hotkeyManager().stopListening();
}

void AppDelegate::resume() {
    startHotkeyListener();
}

void AppDelegate::setupStatusItem() {
    setStatusIcon(QStringLiteral("key.fill"));
    offerMenu();
    settingsSubscription_ = appState_.storageManager().onChange([this] { offerMenu(); });
}

/// In the interface's language; one that is open is left alone as long as that stays.
void AppDelegate::offerMenu() {
    const auto language = appState_.language();
    if (std::exchange(menuLanguage_, language) == language)
        return;
    const auto title = [language](const char16_t* english, const char16_t* chinese) {
        return text::LocalizedText(QString::fromUtf16(english), QString::fromUtf16(chinese)).in(language);
    };
    const platform::MenuItem separator;
    std::vector<platform::MenuItem> menu;
    if (showDashboard) {
        menu.push_back({title(u"Open Dashboard", u"打开主界面"), QStringLiteral(","), [this] { openDashboard(); }});
        menu.push_back(separator);
    }
    menu.push_back({title(u"About Tavrelon", u"关于 Tavrelon"), QString(), [this] { openAbout(); }});
    menu.push_back(separator);
    menu.push_back({title(u"Quit", u"退出"), QStringLiteral("q"), [this] { quitApp(); }});
    userInterface_.statusItem.setMenu(std::move(menu));
}

void AppDelegate::openDashboard() {
    if (showDashboard)
        showDashboard();
}

void AppDelegate::openAbout() {
    userInterface_.application.orderFrontStandardAboutPanel(appState_.language());
}

void AppDelegate::quitApp() {
    userInterface_.application.terminate();
}

void AppDelegate::setStatusIcon(const QString& symbolName, const std::optional<QString>& reason) {
    constexpr qsizetype mostOfAReason = 200;
    const auto name = QStringLiteral("Tavrelon");
    userInterface_.statusItem.setImage(symbolName,
                                       reason ? QStringLiteral("%1: %2").arg(name, reason->left(mostOfAReason)) : name);
}

void AppDelegate::startHotkeyListener() {
    try {
        appState_.hotkeyManager().startListening();
    } catch (const hotkeys::TavrelonError& error) {
        platform_.log.line(QStringLiteral("Failed to start hotkey listener: ") + error.localizedDescription());
    }
}

}  // namespace tavrelon::app
