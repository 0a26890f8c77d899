#include <gtest/gtest.h>

#include <QDateTime>

#include "support/fake_file_picker.h"
#include "support/qt_gtest.h"
#include "support/test_desktop.h"
#include "ui/settings/clone_settings_model.h"

namespace tavrelon::ui {

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

class CloneSettingsTest : public ::testing::Test {
 public:
    tavrelon::testing::TestDesktop desktop;
    tavrelon::testing::FakeFilePicker picker{desktop.loop};
    persistence::StorageManager storage{desktop.defaultsStore, desktop.fileSystem, desktop.log, desktop.loop,
                                        u"/data/Tavrelon"_s};
    generation::PollinationsService service{desktop.loop, desktop.httpSession, desktop.log,
                                            generation::ServiceEndpoints::builtIn()};
    learning::CloneService cloneService{desktop.httpSession, desktop.documentReader, service, QString(),
                                        u"http://127.0.0.1:3002"_s};
    CloneLearner learner{{desktop.loop, storage, cloneService}};
    std::unique_ptr<CloneSettingsModel> page = openPage();

    CloneSettingsTest() { service.configuration.textModels = {generation::PollinationsModel::openai}; }
    std::unique_ptr<CloneSettingsModel> openPage() {
        return std::make_unique<CloneSettingsModel>(desktop.loop, storage, learner, picker);
    }
    void answerWithProfile(std::chrono::nanoseconds delay = 0ns) {
        const QByteArray reply =
            R"({"choices":[{"message":{"content":"{\"system_prompt\":\"I am Ada.\",\"language_style\":\"Dry.\"}"}}]})";
        desktop.httpSession.answer(
            {platform::HttpResponse{.status = 200, .headers = {{"Content-Type", "application/json"}}, .body = reply},
             delay});
    }
    void choose(const QString& path, const QString& text) {
        desktop.documentReader.put(path, text);
        picker.choices.push_back(QUrl::fromLocalFile(path));
        page->chooseFile();
        desktop.loop.runUntilIdle();
    }
    void setLanguage(const QString& language) {
        storage.changeSettings([&](persistence::AppSettings& settings) { settings.appLanguage = language; });
    }
};

TEST_F(CloneSettingsTest, WhatCannotBeLearnedFromAsksNobody) {
    page->setProfileURLInput(u" \n "_s);
    page->learnFromLink();
    EXPECT_EQ(page->errorMessage(), u"Enter a valid link."_s);
    page->learnFromFile();
    EXPECT_EQ(page->errorMessage(), u"Choose a file first."_s);

    setLanguage(u"zh"_s);
    choose(u"/short.txt"_s, u"\n\n "_s + u"长"_s.repeated(99));
    EXPECT_EQ(page->errorMessage(), QString());
    page->learnFromFile();
    desktop.loop.runToEnd();
    EXPECT_EQ(page->errorMessage(), u"内容至少需要 100 个字符。"_s);
    setLanguage(u"en"_s);
    EXPECT_EQ(page->errorMessage(), u"内容至少需要 100 个字符。"_s) << "the language of the moment it arrived";

    desktop.documentReader.putUnsupported(u"/locked.pdf"_s);
    picker.choices.push_back(QUrl::fromLocalFile(u"/locked.pdf"_s));
    page->chooseFile();
    desktop.loop.runUntilIdle();
    page->learnFromFile();
    desktop.loop.runToEnd();
    EXPECT_EQ(page->errorMessage(), u"Unsupported or unreadable file."_s);
    EXPECT_TRUE(desktop.httpSession.requests().empty());
}

TEST_F(CloneSettingsTest, ChoosingAFileMayEndInThreeWays) {
    choose(u"/a/notes.md"_s, QString());
    picker.choices.push_back(std::unexpected(platform::FilePickerError{}));
    page->chooseFile();
    page->chooseFile();
    EXPECT_TRUE(page->isImportingFile());
    desktop.loop.runUntilIdle();
    EXPECT_EQ(picker.titles.size(), 2) << "one picker at a time";
    EXPECT_EQ(page->errorMessage(), u"No file was chosen."_s);
    EXPECT_EQ(page->selectedFileName(), u"notes.md"_s);

    picker.choices.push_back(std::nullopt);
    page->chooseFile();
    desktop.loop.runUntilIdle();
    EXPECT_EQ(page->errorMessage(), u"Choose a file first."_s);
    EXPECT_EQ(page->selectedFileName(), QString());
}

TEST_F(CloneSettingsTest, ALearningGoesOnWithoutItsPage) {
    choose(u"/home/ada/letters.txt"_s, u"0123456789"_s.repeated(20));
    answerWithProfile(20s);
    page->learnFromFile();
    desktop.loop.advance(1s);
    page.reset();
    page = openPage();
    EXPECT_TRUE(page->isLearningFromFile());
    page.reset();
    desktop.loop.advance(30s);
    page = openPage();
    EXPECT_EQ(page->systemPrompt(), u"I am Ada."_s);
    EXPECT_EQ(page->statusMessage(), u"Clone profile updated."_s);
    page = openPage();
    EXPECT_EQ(page->statusMessage(), QString()) << "told once";
}

TEST_F(CloneSettingsTest, WhatAProviderTaughtIsSetAsideForAnotherUntilItIsKept) {
    const auto chooseNvidia = [&](bool nvidia) {
        storage.changeSettings([&](persistence::AppSettings& settings) { settings.enableNvidiaLocal = nvidia; });
    };
    auto& taught = *page->taught();
    EXPECT_EQ(taught.origin(), QString());
    choose(u"/home/ada/letters.txt"_s, u"0123456789"_s.repeated(20));
    answerWithProfile(20s);
    page->learnFromFile();
    desktop.loop.advance(1s);
    chooseNvidia(true);  // while the other one still learns
    desktop.loop.advance(30s);
    EXPECT_TRUE(taught.origin().startsWith(u"Learned by OpenAI ("_s)) << qPrintable(taught.origin());
    EXPECT_TRUE(taught.isSetAside());
    taught.keep();
    EXPECT_FALSE(taught.isSetAside());
    chooseNvidia(false);
    EXPECT_TRUE(taught.isSetAside());

    storage.changeSettings([](persistence::AppSettings& settings) {
        settings.adaptiveSystemPrompt = u"terse"_s;
        persistence::adoptTaught(settings);
    });
    TaughtModel both(storage, {persistence::Taught::AdaptivePrompt, persistence::Taught::CloneProfile});
    both.remove();
    EXPECT_EQ(page->systemPrompt(), QString());
    EXPECT_EQ(storage.settings().adaptiveSystemPrompt, u"terse"_s) << "only what is set aside";
    EXPECT_EQ(both.origin(), u"It is not known who taught this"_s);
}

}  // namespace tavrelon::ui
