// What every key poster does, the fake and the one of the X server.
#include <gmock/gmock.h>

#include <map>
#include <memory>
#include <vector>

#include "desktop/qt/qt_main_loop.h"
#include "desktop/x11/x11_key_poster.h"
#include "support/fake_key_poster.h"
#include "support/key_window.h"
#include "support/virtual_main_loop.h"
#include "support/waiting.h"

namespace tavrelon::testing {

namespace {

using ::testing::ElementsAre;

/// A key poster together with the user's own hands on the keyboard and the application behind it.
class KeyPosterBench {
 public:
    struct Key {
        keys::VirtualKey key = 0;
        keys::Modifiers flags;  ///< with Control where Command was posted

        bool operator==(const Key&) const = default;
    };

    virtual ~KeyPosterBench() = default;
    virtual platform::KeyPoster& poster() = 0;

    /// The user presses Shift and keeps it down, or lets it go.
    virtual void holdShift() = 0;
    virtual void letShiftGo() = 0;

    /// The keys that the application has got, in order.
    virtual std::vector<Key> received() = 0;
};

class FakePosterBench : public KeyPosterBench {
 public:
    platform::KeyPoster& poster() override { return poster_; }
    void holdShift() override {}
    void letShiftGo() override {}

    std::vector<Key> received() override {
        std::vector<Key> keys;
        for (const auto& stroke : poster_.strokes()) {
            const bool command = stroke.flags.contains(keys::commandFlag);
            const auto flags = stroke.flags & (keys::controlFlag | keys::optionFlag | keys::shiftFlag);
            if (stroke.key <= 127)
                keys.push_back({stroke.key, command ? flags | keys::controlFlag : flags});
        }
        return keys;
    }

 private:
    VirtualMainLoop loop_;
    FakeKeyPoster poster_{loop_};
};

class X11PosterBench : public KeyPosterBench {
 public:
    X11PosterBench() : poster_(desktop::X11KeyPoster::open(loop_, std::make_shared<desktop::PostedKeys>()).value()) {}
    ~X11PosterBench() override {
        EXPECT_THAT(keyboard_.down(), ::testing::IsEmpty());
        EXPECT_THAT(keyboard_.downOnPostingDevice(), ::testing::IsEmpty());
    }

    platform::KeyPoster& poster() override { return *poster_; }
    void holdShift() override { keyboard_.press(place::leftShift); }
    void letShiftGo() override {
        keyboard_.release(place::leftShift);
        EXPECT_TRUE(eventually([this] { return keyboard_.downOnPostingDevice().empty(); }));
    }

    std::vector<Key> received() override {
        static const std::map<place::Code, keys::VirtualKey> names{{place::a, keys::keyA},
                                                                   {place::c, keys::keyC},
                                                                   {place::v, keys::keyV},
                                                                   {place::backspace, keys::keyBackspace}};
        keyboard_.strike(place::f12);
        EXPECT_TRUE(eventually([this] { return window_.got(place::f12); }));
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

class KeyPosterContract : public ::testing::TestWithParam<bool> {
 public:
    std::unique_ptr<KeyPosterBench> bench = GetParam()
                                                ? std::unique_ptr<KeyPosterBench>(std::make_unique<X11PosterBench>())
                                                : std::make_unique<FakePosterBench>();
};
using Key = KeyPosterBench::Key;

TEST_P(KeyPosterContract, KeysArriveInOrderWithTheirFlags) {
    bench->poster().press(keys::keyA, keys::commandFlag);
    bench->poster().press(keys::keyBackspace, keys::noModifiers);
    bench->poster().press(keys::keyV, keys::commandFlag | keys::shiftFlag);
    bench->poster().press(5000, keys::noModifiers);  // on no keyboard
    EXPECT_FALSE(bench->poster().isCompositionOpen()) << "no input method runs";
    EXPECT_THAT(bench->received(), ElementsAre(Key{keys::keyA, keys::controlFlag}, Key{keys::keyBackspace, {}},
                                               Key{keys::keyV, keys::controlFlag | keys::shiftFlag}));
}

TEST_P(KeyPosterContract, HeldModifiersStayOutOfPostedKeys) {
    bench->holdShift();
    {
        const platform::ModifiersAside outer(bench->poster());
        bench->poster().press(keys::keyBackspace, keys::noModifiers);
        const platform::ModifiersAside inner(bench->poster());
        bench->poster().press(keys::keyV, keys::commandFlag);
    }
    bench->poster().press(keys::keyBackspace, keys::noModifiers);
    bench->letShiftGo();
    bench->poster().press(keys::keyC, keys::commandFlag);
    EXPECT_THAT(bench->received(), ElementsAre(Key{keys::keyBackspace, {}}, Key{keys::keyV, keys::controlFlag},
                                               Key{keys::keyBackspace, {}}, Key{keys::keyC, keys::controlFlag}));
}

INSTANTIATE_TEST_SUITE_P(OnTheFakeAndOnAServer, KeyPosterContract, ::testing::Bool());

}  // namespace

}  // namespace tavrelon::testing
