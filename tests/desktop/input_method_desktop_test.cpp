#include <gtest/gtest.h>

#include <QDBusConnectionInterface>
#include <QDir>
#include <QFile>

#include "desktop/accessibility_session.h"
#include "desktop/linux/dbus_input_source.h"
#include "desktop/x11/x11_event_tap.h"
#include "desktop/x11/x11_key_poster.h"
#include "desktop/x11/x11_pasteboard.h"
#include "desktop/x11/x11_workspace.h"
#include "support/input_desk.h"
#include "support/xtest_keyboard.h"

namespace tavrelon::testing {

namespace {

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

/// The input core on this desktop's adapters, before a model that answers "ANSWER".
class InputMethod : public ::testing::Test {
 public:
    PinyinSession pinyin;
    desktop::QtMainLoop loop;
    RecordingLog log;
    std::unique_ptr<desktop::X11Workspace> workspace = desktop::X11Workspace::create().value();
    std::unique_ptr<desktop::X11Pasteboard> pasteboard = desktop::X11Pasteboard::create(loop, log).value();
    std::shared_ptr<desktop::PostedKeys> posted = std::make_shared<desktop::PostedKeys>();
    std::unique_ptr<desktop::X11KeyPoster> poster = desktop::X11KeyPoster::open(loop, posted).value();
    desktop::AtspiAccessibility accessibility{*workspace, loop, log};
    desktop::X11EventTap tap{loop, log, posted};
    desktop::DBusInputSource inputSource{loop, std::chrono::seconds(5)};  // on however busy a machine
    FakeScreenCapture screenCapture;
    FakeImageCodec imageCodec;
    FakeHttpSession httpSession{loop};
    MemoryDefaultsStore defaults;
    MemoryFileSystem files;
    FakeSerialQueues serialQueues{loop};
    FakeDocumentReader documentReader{loop};
    FakeAudioInput audioInput;
    FakeSpeech speech;
    platform::Platform platform{
        loop,       log,          accessibility,  tap,        *poster,     *pasteboard,
        *workspace, inputSource,  screenCapture,  imageCodec, httpSession, defaults,
        files,      serialQueues, documentReader, audioInput, speech,      QStringLiteral("/data/Tavrelon")};
    persistence::StorageManager storage{defaults, files, log, loop, platform.applicationSupport};
    persistence::HistoryManager history{files, log, platform.applicationSupport, 20};
    capture::ContextCapturer capturer{platform};
    output::OutputWriter writer{platform};
    FakeGenerator generator{loop};
    media::SpeechRecognizer recognizer{platform};
    media::WindowVideoRecorder recorder{platform, capturer, std::chrono::milliseconds(500), 24};
    FakeInputRecorder learner;
    std::shared_ptr<input::InputStateMachine> machine = std::make_shared<input::InputStateMachine>(
        input::InputServices{platform, capturer, generator, writer, history, storage, &learner, recorder});
    hotkeys::HotkeyManager hotkeys{platform};
    XTestKeyboard keyboard;
    QTemporaryDir folder;
    std::unique_ptr<RunningProgram> editor;

    void SetUp() override {
        machine->setSpeechRecognizer(recognizer);
        hotkeys.stateMachine = machine;
        hotkeys.startListening();
        editor = std::make_unique<RunningProgram>(
            QStringLiteral("mousepad"), QStringList{writeFile(folder, QStringLiteral("field.txt"), QString())});
        ASSERT_TRUE(eventually([&] { return value() == QString() && inputSource.isInputMethodActive(); }))
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
            wait(std::chrono::milliseconds(60));  // as fast as people type
        }
    }
    void toggle() {
        keyboard.strikeWith({place::leftShift, place::leftAlt, place::leftSuper}, place::l);
        wait(std::chrono::milliseconds(60));
    }
    void wait(std::chrono::milliseconds time) {
        bool over = false;
        const auto timer = loop.after(time, [&over] { over = true; });
        EXPECT_TRUE(eventually([&over] { return over; }));
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
    wait(std::chrono::milliseconds(150));
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
}

}  // namespace

}  // namespace tavrelon::testing
