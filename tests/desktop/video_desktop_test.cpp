// A video of a real window that changes, and what the model service gets of it.
#include <gtest/gtest.h>

#include <QImage>
#include <QTemporaryDir>

#include "app/app_state.h"
#include "desktop/documents/picture_process_decoder.h"
#include "desktop/qt/qt_http_session.h"
#include "desktop/qt/qt_image_codec.h"
#include "desktop/tools.h"
#include "desktop/typing_adapters.h"
#include "desktop/x11/x11_screen_capture.h"
#include "support/qt_gtest.h"
#include "support/run_task_on_qt.h"
#include "support/stand_in_service.h"
#include "support/test_desktop.h"
#include "support/xtest_keyboard.h"

namespace tavrelon::testing {

using namespace std::chrono_literals;

namespace {

generation::ServiceEndpoints endpointsAt(const StandInService& service) {
    generation::ServiceEndpoints endpoints;
    endpoints.nvidiaChatCompletionsURL = service.url(QStringLiteral("/v1/chat/completions"));
    endpoints.builtInNvidiaApiKey = QStringLiteral("key");
    return endpoints;
}

std::vector<QImage> picturesIn(const ReceivedRequest& request) {
    std::vector<QImage> pictures;
    const QByteArray mark = "data:image/jpeg;base64,";
    for (auto at = request.body.indexOf(mark); at >= 0; at = request.body.indexOf(mark, at + 1)) {
        const auto start = at + mark.size();
        const auto bytes = request.body.mid(start, request.body.indexOf('"', start) - start);
        pictures.push_back(QImage::fromData(QByteArray::fromBase64(bytes)));
    }
    return pictures;
}

}  // namespace

/// The services of the program on the real desktop, with an address table of the test's own.
class VideoDesktopTest : public TypingAdapters<RecordingLog>, public ::testing::Test {
 public:
    StandInService service;
    TestDesktop fakes;  // for what the video has nothing to do with
    std::unique_ptr<desktop::X11ScreenCapture> screen =
        desktop::X11ScreenCapture::create(loop, log, *workspace).value();
    desktop::PictureProcessDecoder decoder{loop, QString()};  // no picture from elsewhere comes here
    desktop::QtImageCodec codec{loop, decoder};
    desktop::QtHttpSession http{loop};
    FakeSerialQueues queues{loop};
    FakeDocumentReader documents{loop};
    platform::Platform platform{loop,
                                log,
                                accessibility,
                                hotkeys,
                                keyObserver,
                                *poster,
                                *pasteboard,
                                *workspace,
                                inputSource,
                                *screen,
                                codec,
                                http,
                                fakes.defaultsStore,
                                fakes.fileSystem,
                                queues,
                                documents,
                                fakes.audioInput,
                                fakes.speech,
                                QStringLiteral("/data/Tavrelon")};
    app::AppState app{platform, fakes.userInterface, endpointsAt(service), [](const QString&) {}};
    XTestKeyboard keyboard;

    void pressVideoHotkey() {
        constexpr place::Code g = 42;
        keyboard.strikeWith({place::leftShift, place::leftAlt, place::leftSuper}, g);
    }
    bool becomes(input::InputState::Case state) {
        return runQtUntil([&] { return app.inputStateMachine().currentState() == state; });
    }
};

TEST_F(VideoDesktopTest, TheServiceSeesTheWindowChangeAndItsDescriptionTakesThePlaceOfTheQuestion) {
    const QTemporaryDir folder;
    const auto path = folder.filePath(QStringLiteral("field.txt"));
    writeWhole(path, {});
    const RunningProgram editor(QStringLiteral("mousepad"), {path});
    ASSERT_TRUE(runQtUntil([] { return frontmostTitle().contains(QStringLiteral("field.txt")); }));
    app.hotkeyManager().startListening();
    letPass(500ms);
    StandInAnswer answer;
    answer.content = QStringLiteral("LETTERS APPEAR");
    service.ledger().script({answer});
    pressVideoHotkey();
    ASSERT_TRUE(becomes(input::InputState::Case::recordingVideo));
    letPass(700ms);
    for (const auto& word : {QStringLiteral("what "), QStringLiteral("happens "), QStringLiteral("here")}) {
        xdotool({QStringLiteral("type"), QStringLiteral("--delay"), QStringLiteral("20"), word});
        letPass(600ms);
    }
    pressVideoHotkey();
    ASSERT_TRUE(runQtUntil([&] { return !app.historyManager().entries().empty(); }))
        << qPrintable(log.lines().join(u'\n'));
    const auto requests = service.ledger().requests();
    ASSERT_EQ(requests.size(), 1U);
    EXPECT_TRUE(requests.front().body.contains("what happens here"));
    const auto pictures = picturesIn(requests.front());
    ASSERT_GE(pictures.size(), 3U);
    EXPECT_FALSE(pictures.front().isNull());
    EXPECT_NE(pictures.front(), pictures.back()) << "the letters are to be seen";
    const auto content = runTaskOnQt(loop, screen->shareableContent());
    EXPECT_EQ(pictures.back().size(), QSize(content->windows.front().width, content->windows.front().height));
    EXPECT_TRUE(becomes(input::InputState::Case::idle));
    EXPECT_TRUE(runQtUntil([&] {
        pressKeys({QStringLiteral("ctrl+s")});
        return contentsOf(path).trimmed() == "LETTERS APPEAR";
    })) << contentsOf(path).toStdString();
}

}  // namespace tavrelon::testing
