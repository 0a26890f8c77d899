#include "app/app_delegate.h"

namespace tavrelon::app {

void AppDelegate::applicationDidFinishLaunching() {
    startHotkeyListener();
    appState_.sceneRouter().updateScenes(appState_.storageManager().scenes());
}

void AppDelegate::applicationWillTerminate() {
    appState_.hotkeyManager().stopListening();
}

void AppDelegate::startHotkeyListener() {
    try {
        appState_.hotkeyManager().startListening();
    } catch (const hotkeys::TavrelonError& error) {
        platform_.log.line(QStringLiteral("Failed to start hotkey listener: ") + error.localizedDescription());
    }
}

}  // namespace tavrelon::app
