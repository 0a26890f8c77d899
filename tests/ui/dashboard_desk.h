#pragma once

#include "app/provider_settings.h"
#include "support/fake_raw_keys.h"
#include "support/qt_gtest.h"
#include "support/test_desktop.h"
#include "ui/settings/general_settings_model.h"
#include "ui/settings/hotkeys_settings_model.h"
#include "ui/settings/privacy_settings_model.h"

namespace tavrelon::testing {

/// The models of the pages of settings over fakes.
struct DashboardDesk {
    TestDesktop desktop;
    MemoryDefaultsStore store;
    persistence::StorageManager storage{store, desktop.fileSystem, desktop.log, desktop.loop,
                                        desktop.platform.applicationSupport};
    generation::PollinationsService service{desktop.loop, desktop.httpSession, desktop.log,
                                            generation::ServiceEndpoints::builtIn()};
    persistence::ChangeSubscription following = app::followSettings(storage, service);
    hotkeys::HotkeyManager manager{desktop.platform};
    FakeRawKeys keys;
    std::vector<bool> shownStates;  ///< what the overlay of all hotkeys showed
    platform::AuthorizationStatus microphone = platform::AuthorizationStatus::NotDetermined;
    int microphoneRequests = 0;

    int forgettings = 0;
    ui::GeneralSettingsModel general{{desktop.loop, storage, service, desktop.httpSession}, [this] { ++forgettings; }};
    app::UndoOffers undoOffers{desktop.loop};
    ui::HotkeysSettingsModel hotkeys{{desktop.loop, storage, manager, keys,
                                      [this](bool enabled) { shownStates.push_back(enabled); },
                                      desktop.keyboard.hotkeys, desktop.speech, undoOffers}};
    app::ServiceConsent consent{desktop.loop, store};
    ui::PrivacySettingsModel privacy{storage, permissions(), consent};

    persistence::AppSettings stored() const {
        return persistence::storedSettingsFrom(text::parseJson(*store.data(persistence::defaults_keys::settings)))
            .settings;
    }

 private:
    platform::Permissions permissions() {
        using enum platform::AuthorizationStatus;
        return {{[] { return Authorized; }, [] {}},
                {[] { return Denied; }, [] {}},
                {[this] { return microphone; },
                 [this] {
                     ++microphoneRequests;
                     microphone = Authorized;
                 }}};
    }
};

}  // namespace tavrelon::testing
