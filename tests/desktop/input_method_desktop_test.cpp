#include <gtest/gtest.h>

#include <QDBusConnectionInterface>
#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include "desktop/real_desk.h"
#include "desktop/tools.h"
#include "support/waiting.h"
#include "support/xtest_keyboard.h"

namespace tavrelon::testing {

namespace {

using namespace std::chrono_literals;

constexpr place::Code h = 43;
constexpr place::Code i = 31;
constexpr place::Code n = 57;
constexpr place::Code o = 32;

/// A running Fcitx 5 with pinyin switched on in every field, for programs that start after it.
class PinyinSession {
 public:
    PinyinSession() {
        const QDir folder(qEnvironmentVariable("XDG_CONFIG_HOME") + QStringLiteral("/fcitx5"));
        folder.mkpath(QStringLiteral("."));
        write(folder.filePath(QStringLiteral("profile")),
              "[Groups/0]\nName=Default\nDefault Layout=us\nDefaultIM=pinyin\n\n[Groups/0/Items/0]\nName=keyboard-us\n"
              "Layout=\n\n[Groups/0/Items/1]\nName=pinyin\nLayout=\n\n[GroupOrder]\n0=Default\n");
        write(folder.filePath(QStringLiteral("config")), "[Behavior]\nActiveByDefault=True\n");
        qputenv("GTK_IM_MODULE", "fcitx");
        qputenv("XMODIFIERS", "@im=fcitx");
        process_.setStandardErrorFile(QProcess::nullDevice());
        process_.start(QStringLiteral("fcitx5"), {QStringLiteral("--disable=wayland,waylandim,cloudpinyin,kimpanel")});
        EXPECT_TRUE(eventually([] {
            const auto bus = QDBusConnection::sessionBus().interface();
            return bus->isServiceRegistered(QStringLiteral("org.fcitx.Fcitx5")).value();
        }));
    }
    PinyinSession(const PinyinSession&) = delete;
    PinyinSession& operator=(const PinyinSession&) = delete;
    ~PinyinSession() {
        process_.terminate();
        process_.waitForFinished(5000);
    }

 private:
    static void write(const QString& path, const QByteArray& text) {
        QFile file(path);
        EXPECT_TRUE(file.open(QIODevice::WriteOnly) && file.write(text) == text.size());
    }
    QProcess process_;
};

/// Starts before the desk, so that it is there for all who look for it.
struct PinyinDesk {
    PinyinSession pinyin;
};

/// The input core beside the input method, before a model that answers "ANSWER".
class InputMethod : public PinyinDesk, public RealDesk, public ::testing::Test {
 public:
    XTestKeyboard keyboard;
    QTemporaryDir folder;
    std::unique_ptr<RunningProgram> editor;

    void SetUp() override { open(QString()); }
    void open(const QString& text) {
        editor.reset();
        const auto path = folder.filePath(QStringLiteral("field.txt"));
        writeWhole(path, text.toUtf8());
        editor = std::make_unique<RunningProgram>(QStringLiteral("mousepad"), QStringList{path});
        ASSERT_TRUE(eventually([&] { return value() == text && inputSource.isInputMethodActive(); }))
            << "pinyin is not switched on in the editor's field";
    }

    std::optional<QString> value() {
        const auto element = accessibility.copyAttribute(platform::axApplicationElement(editor->process()),
                                                         platform::AXAttribute::FocusedUIElement);
        const auto* field = element ? std::get_if<platform::AXElement>(&*element) : nullptr;
        const auto text = field ? accessibility.copyAttribute(*field, platform::AXAttribute::Value)
                                : platform::Accessibility::Result();
        const auto* string = text ? std::get_if<QString>(&*text) : nullptr;
        return string ? std::optional(*string) : std::nullopt;
    }

    void type(std::initializer_list<place::Code> keys) {
        for (const auto key : keys) {
            keyboard.strike(key);
            letPass(60ms);  // as fast as people type
        }
    }
    void toggle() {
        keyboard.strikeWith({place::leftShift, place::leftAlt, place::leftSuper}, place::l);
        letPass(60ms);
    }
    bool asked() {
        return eventually([&] { return !generator.requests.empty(); });
    }
};

TEST_F(InputMethod, AWordCommittedBehindTheHotkeyIsTheRequest) {
    toggle();
    ASSERT_TRUE(eventually([&] { return machine->currentState() == input::InputState::Case::listening; }));
    type({place::w, o});
    toggle();
    letPass(150ms);
    EXPECT_TRUE(generator.requests.empty()) << "the letters are not waited out";
    type({place::space});
    ASSERT_TRUE(asked());
    EXPECT_EQ(generator.requests.front().input.toStdString(), "我");
    EXPECT_TRUE(eventually([&] { return value() == QStringLiteral("ANSWER"); })) << value()->toStdString();
}

TEST_F(InputMethod, OnlyWhatIsCommittedIsTheRequest) {
    toggle();
    ASSERT_TRUE(eventually([&] { return machine->currentState() == input::InputState::Case::listening; }));
    type({n, i, h, place::a, o, place::space});
    ASSERT_TRUE(eventually([&] { return value() == QStringLiteral("你好"); })) << value()->toStdString();
    type({place::w, o});
    toggle();
    ASSERT_TRUE(asked());
    EXPECT_EQ(generator.requests.front().input.toStdString(), "你好");
    EXPECT_TRUE(eventually([&] { return value() == QStringLiteral("ANSWER"); })) << value()->toStdString();
    type({n, i, place::space});
    EXPECT_TRUE(eventually([&] { return value() == QStringLiteral("ANSWER你"); })) << value()->toStdString();
}

TEST_F(InputMethod, LettersThatAreNeverCommittedCostTheFieldNothing) {
    constexpr place::Code end = 115;
    open(QStringLiteral("stays "));
    type({end});
    toggle();
    ASSERT_TRUE(eventually([&] { return state() == input::InputState::Case::listening; }));
    type({place::w, o});
    toggle();
    ASSERT_TRUE(asked());
    EXPECT_TRUE(eventually([&] { return value() == QStringLiteral("stays ANSWER"); })) << value()->toStdString();
}

TEST_F(InputMethod, EscapeInTheMiddleOfAWordIsTheInputMethodsWhenNothingIsOpen) {
    type({place::w, o, place::escape});
    type({n, i, place::space});
    EXPECT_TRUE(eventually([&] { return value() == QStringLiteral("你"); })) << value()->toStdString();
    EXPECT_EQ(state(), input::InputState::Case::idle);
    EXPECT_TRUE(generator.requests.empty());
}

}  // namespace

}  // namespace tavrelon::testing
