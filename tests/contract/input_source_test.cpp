#include <gtest/gtest.h>

#include "desktop/linux/input_method/dbus_input_source.h"
#include "desktop/linux/input_method/input_method_decoding.h"
#include "desktop/qt/qt_main_loop.h"
#include "support/run_task_on_qt.h"
#include "support/stand_in_input_method.h"

namespace tavrelon::testing {

namespace {

using namespace std::chrono_literals;
using Framework = StandInInputMethod::Framework;

enum class Method : std::uint8_t { Keyboard, Composing };

/// The adapter with a framework that comes up with the first method.
class InputSourceOnTheBus : public ::testing::TestWithParam<Framework> {
 public:
    desktop::QtMainLoop loop;
    desktop::DBusInputSource source{loop};

    InputSourceOnTheBus() {
        // The stand-in serves on the session bus, where real IBus has a bus of its own.
        qputenv("IBUS_ADDRESS", qgetenv("DBUS_SESSION_BUS_ADDRESS"));
    }
    void use(Method method) {
        const bool isFcitx = GetParam() == Framework::Fcitx;
        if (method == Method::Composing)
            framework().use(isFcitx ? QStringLiteral("pinyin") : QStringLiteral("libpinyin"));
        else
            framework().use(isFcitx ? QStringLiteral("keyboard-us") : QStringLiteral("xkb:us::eng"));
    }
    /// Asks in this turn of the main loop and in later ones until the answer is this.
    bool answers(bool isActive) {
        return runQtUntil([&] { return source.isInputMethodActive() == isActive; });
    }
    StandInInputMethod& framework() {
        if (!standIn_)
            standIn_ = std::make_unique<StandInInputMethod>(GetParam());
        return *standIn_;
    }
    void endFramework() { standIn_.reset(); }

 private:
    std::unique_ptr<StandInInputMethod> standIn_;
};

TEST_P(InputSourceOnTheBus, OnlyAComposingMethodIsActive) {
    EXPECT_FALSE(source.isInputMethodActive()) << "there is none";
    for (const auto method : {Method::Composing, Method::Keyboard, Method::Composing}) {
        use(method);
        EXPECT_TRUE(answers(method == Method::Composing));
    }
}

TEST_P(InputSourceOnTheBus, AHungFrameworkCostsABoundedWaitAndIsHeardAgain) {
    use(Method::Composing);
    ASSERT_TRUE(answers(true));
    framework().hang(true);
    letPass(1ms);  // another turn of the loop
    EXPECT_TRUE(source.isInputMethodActive()) << "busy for a moment, it counts as what it said last";
    ASSERT_TRUE(answers(false));
    for (int turn = 0; turn < 10; ++turn) {
        letPass(1ms);  // another turn of the loop
        const auto before = std::chrono::steady_clock::now();
        EXPECT_FALSE(source.isInputMethodActive());
        EXPECT_LT(std::chrono::steady_clock::now() - before, 400ms) << "the limit is 50 ms, the machine may be busy";
    }
    framework().hang(false);
    EXPECT_TRUE(answers(true));
    endFramework();
    EXPECT_TRUE(answers(false));
}

TEST(InputMethodDecoding, AFieldWithoutAKeyYetGoesByWhatTheUserSwitchedOn) {
    EXPECT_TRUE(desktop::isComposingFcitxMethod(QString(), 2));
    EXPECT_FALSE(desktop::isComposingFcitxMethod(QString(), 1));
    EXPECT_FALSE(desktop::isComposingFcitxMethod(QStringLiteral("keyboard-us"), 2));
}

TEST(InputMethodDecoding, FindsTheAddressOfIBus) {
    EXPECT_EQ(desktop::ibusAddressFileName(QStringLiteral("0123"), QStringLiteral(":99.0")),
              QStringLiteral("0123-unix-99"));
    EXPECT_EQ(desktop::ibusAddressFileName(QStringLiteral("0123"), QStringLiteral("far:1")),
              QStringLiteral("0123-far-1"));
    EXPECT_EQ(desktop::ibusAddressIn("# made by the daemon\nIBUS_ADDRESS=unix:path=/tmp/x,guid=1\nIBUS_DAEMON_PID=7\n"),
              QStringLiteral("unix:path=/tmp/x,guid=1"));
    EXPECT_EQ(desktop::ibusAddressIn("IBUS_ADDRESS=\n\xff\xfe"), std::nullopt);
}

INSTANTIATE_TEST_SUITE_P(Frameworks, InputSourceOnTheBus, ::testing::Values(Framework::Fcitx, Framework::IBus),
                         [](const auto& info) { return info.index == 0 ? "Fcitx" : "IBus"; });

}  // namespace

}  // namespace tavrelon::testing
