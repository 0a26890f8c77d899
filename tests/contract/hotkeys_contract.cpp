// What hotkeys and the observation of keys do on every desktop, the fake and an X server.
#include <gmock/gmock.h>

#include <memory>

#include "desktop/qt/qt_main_loop.h"
#include "desktop/x11/keys/x11_key_observer.h"
#include "support/fake_keyboard.h"
#include "support/key_window.h"
#include "support/qt_gtest.h"
#include "support/recording_log.h"
#include "support/waiting.h"

namespace tavrelon::testing {

namespace {

using keys::VirtualKey;
using platform::WantedHotkey;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using Fires = WantedHotkey::Fires;

/// The two ports together with the keyboard in front of them and the application behind.
class KeysBench {
 public:
    virtual ~KeysBench() = default;
    virtual platform::Hotkeys& hotkeys() = 0;
    virtual platform::KeyObserver& observer() = 0;

    /// Strikes the key A or L.
    virtual void strike(VirtualKey key) = 0;
    virtual void strikeControlOption() = 0;

    /// The presses that the application has got, once all that was struck is through.
    virtual std::vector<VirtualKey> received() = 0;
};

class FakeKeysBench : public KeysBench {
 public:
    platform::Hotkeys& hotkeys() override { return keyboard_.hotkeys; }
    platform::KeyObserver& observer() override { return keyboard_.observer; }
    void strike(VirtualKey key) override {
        if (keyboard_.press(key) == Taken::ByApplication)
            received_.push_back(key);
    }
    void strikeControlOption() override { keyboard_.chord(keys::controlFlag | keys::optionFlag); }
    std::vector<VirtualKey> received() override { return received_; }

 private:
    FakeKeyboard keyboard_;
    std::vector<VirtualKey> received_;
};

class X11KeysBench : public KeysBench {
 public:
    platform::Hotkeys& hotkeys() override { return hotkeys_; }
    platform::KeyObserver& observer() override { return observer_; }
    void strike(VirtualKey key) override { keyboard_.strike(key == keys::keyL ? place::l : place::a); }
    void strikeControlOption() override { keyboard_.strikeWith({place::leftControl}, place::leftAlt); }

    std::vector<VirtualKey> received() override {
        // The mark behind the last key has arrived, so all before it has. One more turn brings the handler's share.
        const auto marks = std::ranges::count(window_.presses(), place::f12);
        keyboard_.strike(place::f12);
        EXPECT_TRUE(eventually([&] { return std::ranges::count(window_.presses(), place::f12) > marks; }));
        letPass(std::chrono::milliseconds(100));
        std::vector<VirtualKey> keys;
        for (const auto code : window_.presses())
            if (code == place::a || code == place::l)
                keys.push_back(code == place::a ? keys::keyA : keys::keyL);
        return keys;
    }

 private:
    desktop::QtMainLoop loop_;
    RecordingLog log_;
    XTestKeyboard keyboard_;
    KeyWindow window_;
    desktop::X11Hotkeys hotkeys_{loop_, log_, std::make_shared<desktop::PostedKeys>()};
    desktop::X11KeyObserver observer_{hotkeys_};
};

class KeysContract : public ::testing::TestWithParam<bool> {
 public:
    void start() {
        ASSERT_TRUE(bench->hotkeys().start([this](const WantedHotkey& hotkey) { told.push_back(hotkey); }));
    }
    void observe() {
        ASSERT_TRUE(bench->observer().start({[this](const auto& event) {
                                                 if (event.keyCode == keys::keyA || event.keyCode == keys::keyL)
                                                     observed.push_back(event.keyCode);
                                             },
                                             [] {}}));
    }

    static constexpr WantedHotkey a{{keys::keyA, keys::noModifiers}, Fires::OnPress};
    static constexpr WantedHotkey chord{keys::defaults::voiceHotkey, Fires::OnModifiersReleased};

    std::unique_ptr<KeysBench> bench =
        GetParam() ? std::unique_ptr<KeysBench>(std::make_unique<X11KeysBench>()) : std::make_unique<FakeKeysBench>();
    std::vector<WantedHotkey> told;
    std::vector<VirtualKey> observed;
};

TEST_P(KeysContract, OnlyWhatIsWantedNowIsTakenAndTold) {
    bench->hotkeys().declare({a, chord});
    start();
    bench->strike(keys::keyA);
    bench->strike(keys::keyL);
    bench->strikeControlOption();
    EXPECT_THAT(bench->received(), ElementsAre(keys::keyL));
    EXPECT_THAT(told, ElementsAre(a, chord));
    bench->hotkeys().declare({});
    bench->strike(keys::keyA);
    bench->strikeControlOption();
    EXPECT_THAT(bench->received(), ElementsAre(keys::keyL, keys::keyA));
    EXPECT_EQ(told.size(), 2U);
}

TEST_P(KeysContract, TypedKeysAreToldBetweenStartAndStopAndHotkeysAreNone) {
    bench->hotkeys().declare({a});
    start();
    bench->strike(keys::keyL);
    bench->received();
    observe();
    bench->strike(keys::keyA);
    bench->strike(keys::keyL);
    EXPECT_THAT(bench->received(), ElementsAre(keys::keyL, keys::keyL));
    EXPECT_THAT(observed, ElementsAre(keys::keyL));
    bench->observer().stop();
    bench->strike(keys::keyL);
    bench->received();
    EXPECT_EQ(observed.size(), 1U);
}

TEST_P(KeysContract, NothingIsTakenAfterStopAndItStartsAgainWithWhatWasDeclared) {
    bench->hotkeys().declare({a});
    start();
    bench->hotkeys().stop();
    bench->hotkeys().stop();
    bench->strike(keys::keyA);
    EXPECT_THAT(bench->received(), ElementsAre(keys::keyA));
    EXPECT_THAT(told, IsEmpty());
    start();
    bench->strike(keys::keyA);
    EXPECT_THAT(bench->received(), ElementsAre(keys::keyA));
    EXPECT_THAT(told, ElementsAre(a));
}

INSTANTIATE_TEST_SUITE_P(OnTheFakeAndOnAServer, KeysContract, ::testing::Bool());

}  // namespace

}  // namespace tavrelon::testing
