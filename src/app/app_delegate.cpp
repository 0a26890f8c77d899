#include "app/app_delegate.h"

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
    const platform::MenuItem separator;
    std::vector<platform::MenuItem> menu;
    if (showDashboard) {
        menu.push_back({QStringLiteral("Open Dashboard"), QStringLiteral(","), [this] { openDashboard(); }});
        menu.push_back(separator);
    }
    menu.push_back({QStringLiteral("About Tavrelon"), QString(), [this] { openAbout(); }});
    menu.push_back(separator);
    menu.push_back({QStringLiteral("Quit"), QStringLiteral("q"), [this] { quitApp(); }});
    userInterface_.statusItem.setMenu(std::move(menu));
}

void AppDelegate::openDashboard() {
    if (showDashboard)
        showDashboard();
}

void AppDelegate::openAbout() {
    userInterface_.application.orderFrontStandardAboutPanel();
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
