#include <map>

#include "contract/key_poster_contract.h"
#include "desktop/qt/qt_main_loop.h"
#include "desktop/x11/x11_key_poster.h"
#include "support/key_window.h"

namespace tavrelon::testing {

namespace {

class X11Bench : public KeyPosterBench {
 public:
    X11Bench() : poster_(desktop::X11KeyPoster::open(loop_, std::make_shared<desktop::PostedKeys>()).value()) {}
    ~X11Bench() override {
        EXPECT_THAT(keyboard_.down(), ::testing::IsEmpty());
        EXPECT_THAT(keyboard_.downOnPostingDevice(), ::testing::IsEmpty());
    }

    platform::KeyPoster& poster() override { return *poster_; }
    void holdShift() override { keyboard_.press(place::leftShift); }
    void letShiftGo() override {
        keyboard_.release(place::leftShift);
        EXPECT_TRUE(spinUntil([this] { return keyboard_.downOnPostingDevice().empty(); }));
    }

    std::vector<Key> received() override {
        static const std::map<place::Code, keys::VirtualKey> names{{place::a, keys::keyA},
                                                                   {place::c, keys::keyC},
                                                                   {place::v, keys::keyV},
                                                                   {place::backspace, keys::keyBackspace}};
        keyboard_.strike(place::f12);
        EXPECT_TRUE(spinUntil([this] { return window_.got(place::f12); }));
        std::vector<Key> keys;
        for (const auto& stroke : window_.strokes())
            if (const auto name = names.find(stroke.code); stroke.isPress && name != names.end())
                keys.push_back({name->second, flagsOf(stroke.state)});
        return keys;
    }

 private:
    static keys::Modifiers flagsOf(unsigned state) {
        const auto control = state & 4 ? keys::controlFlag : keys::noModifiers;
        return state & 1 ? control | keys::shiftFlag : control;
    }

    desktop::QtMainLoop loop_;
    XTestKeyboard keyboard_;
    KeyWindow window_;
    std::unique_ptr<desktop::X11KeyPoster> poster_;
};

}  // namespace

INSTANTIATE_TEST_SUITE_P(X11, KeyPosterContract, ::testing::Values([]() -> std::unique_ptr<KeyPosterBench> {
                             return std::make_unique<X11Bench>();
                         }));

}  // namespace tavrelon::testing
