// The recogniser with a scripted library.
#include <dlfcn.h>
#include <gtest/gtest.h>

#include <QDir>
#include <QFile>
#include <QProcess>
#include <QRegularExpression>
#include <QTemporaryDir>

#include "desktop/audio/vosk_speech.h"
#include "support/private_sound_server.h"
#include "support/qt_gtest.h"
#include "support/recording_log.h"
#include "support/virtual_main_loop.h"
#include "support/waiting.h"

namespace tavrelon::testing {

using namespace std::chrono_literals;

namespace {

const auto locale = QStringLiteral("zh-CN");

/// Keeps what a recogniser reports. Any thread.
class Reports {
 public:
    platform::Speech::ResultHandler handler() {
        return [this](std::expected<platform::SpeechResult, platform::SpeechError> outcome) {
            const std::lock_guard lock(mutex_);
            texts_ << (!outcome
                           ? outcome.error().isUnavailable ? QStringLiteral("unavailable") : QStringLiteral("error")
                       : outcome->isFinal ? outcome->formattedString + u'!'
                                          : outcome->formattedString);
        };
    }
    QStringList texts() const {
        const std::lock_guard lock(mutex_);
        return texts_;
    }
    void clear() {
        const std::lock_guard lock(mutex_);
        texts_.clear();
    }
    bool come(const QStringList& expected) const {
        return eventually([&] { return texts().size() >= expected.size(); }) && texts() == expected;
    }

 private:
    mutable std::mutex mutex_;
    QStringList texts_;
};

/// An application support folder with a library and a model in it.
class SpeechFolder {
 public:
    QString path() const { return folder_.path(); }
    void installLibrary(const char* file) {
        QDir().mkpath(path() + QStringLiteral("/speech"));
        QFile::remove(path() + QStringLiteral("/speech/libvosk.so"));
        EXPECT_TRUE(QFile::copy(QString::fromUtf8(file), path() + QStringLiteral("/speech/libvosk.so")));
    }
    void installModel(const QByteArray& script) {
        QDir().mkpath(path() + QStringLiteral("/speech/zh-CN"));
        QFile file(path() + QStringLiteral("/speech/zh-CN/script"));
        EXPECT_TRUE(file.open(QIODevice::WriteOnly) && file.write(script) == script.size());
    }
    /// How many models the library has in memory.
    int models() const {
        const auto library = QFile::encodeName(path() + QStringLiteral("/speech/libvosk.so"));
        void* const handle = ::dlopen(library.constData(), RTLD_NOW | RTLD_NOLOAD);
        return reinterpret_cast<int (*)()>(::dlsym(handle, "scripted_vosk_models"))();
    }

 private:
    QTemporaryDir folder_;
};

}  // namespace

class VoskTest : public ::testing::Test {
 public:
    VirtualMainLoop loop;
    RecordingLog log;
    SpeechFolder folder;
    Reports reports;
    std::atomic<int> hearings = 0;
    std::optional<desktop::VoskSpeech> speech;

    VoskTest() { speech.emplace(loop, log, folder.path()); }
    void install(const QByteArray& script) {
        folder.installLibrary(SCRIPTED_VOSK);
        folder.installModel(script);
        ASSERT_TRUE(eventually([this] { return speech->isAvailable(locale); }));
    }
    std::unique_ptr<platform::SpeechTask> start() {
        return speech->startTask(speech->createRequest({.locale = locale}), [this] { ++hearings; }, reports.handler());
    }
    /// What comes of so much sound.
    QStringList reportsOf(std::size_t samples) {
        const auto request = speech->createRequest({.locale = locale, .reportsPartialResults = true});
        const auto task = speech->startTask(request, [] {}, reports.handler());
        request->append(std::vector<std::int16_t>(samples));
        task->finish();
        EXPECT_TRUE(eventually([this] {
            const auto texts = reports.texts();
            return !texts.isEmpty() &&
                   texts.last().contains(QRegularExpression(QStringLiteral("!$|^error$|^unavailable$")));
        }));
        return reports.texts();
    }
};

TEST_F(VoskTest, PartialResultsGrowIntoOneFinalOne) {
    install("1600 partial 你\n3200 utterance 你 好\n4800 partial 吗\n");
    EXPECT_TRUE(speech->supportsOnDeviceRecognition(locale));
    const auto request = speech->createRequest({.locale = locale, .reportsPartialResults = true});
    const auto task = speech->startTask(request, [] {}, reports.handler());
    QStringList expected;
    for (const auto* const text : {"你", "你好", "你好吗"}) {
        request->append(std::vector<std::int16_t>(1600));
        expected << QString::fromUtf8(text);
        EXPECT_TRUE(reports.come(expected)) << qPrintable(reports.texts().join(u'|'));
    }
    task->finish();
    expected << QStringLiteral("你好吗!");
    EXPECT_TRUE(reports.come(expected)) << qPrintable(reports.texts().join(u'|'));
    request->append(std::vector<std::int16_t>(16000));
    task->cancel();
    QThread::msleep(50);
    EXPECT_EQ(reports.texts(), expected);
}

TEST_F(VoskTest, WhatIsMissingIsToldInOneLineAndAnInstallationNeedsNoRestart) {
    EXPECT_FALSE(speech->isAvailable(locale));
    ASSERT_EQ(log.lines().size(), 1);
    EXPECT_TRUE(log.lines().front().contains(folder.path() + QStringLiteral("/speech/libvosk.so")));
    EXPECT_TRUE(log.lines().front().contains(folder.path() + QStringLiteral("/speech/zh-CN (no such folder)")));
    folder.installModel("");
    folder.installLibrary(VOSK_WITHOUT_FINAL_RESULT);
    EXPECT_FALSE(speech->isAvailable(locale));
    EXPECT_TRUE(log.lines().last().contains(QStringLiteral("it lacks vosk_recognizer_final_result")))
        << qPrintable(log.lines().last());
    folder.installLibrary("/etc/passwd");
    EXPECT_FALSE(speech->isAvailable(locale)) << "what is no library";
    install("");
}

TEST_F(VoskTest, TheInstallationScriptTakesWhatFitsAndNothingElse) {
    const QTemporaryDir downloads;
    const auto model = downloads.filePath(QStringLiteral("vosk-model-cn"));
    auto given = model;
    const auto install = [&](const char* library, const QStringList& language = {}) {
        QProcess script;
        auto environment = QProcessEnvironment::systemEnvironment();
        environment.insert(QStringLiteral("XDG_DATA_HOME"), folder.path());
        environment.insert(QStringLiteral("TAVRELON_VOICE_MODELS"), QStringLiteral("file://") + downloads.path());
        script.setProcessEnvironment(environment);
        script.start(QStringLiteral(INSTALL_VOICE), QStringList{QString::fromUtf8(library), given} + language);
        EXPECT_TRUE(script.waitForFinished(20000));
        return script.exitCode();
    };
    speech.emplace(loop, log, folder.path() + QStringLiteral("/Tavrelon"));
    QDir().mkpath(model);
    EXPECT_EQ(install(SCRIPTED_VOSK), 65) << "an empty folder is no model";
    QDir().mkpath(model + QStringLiteral("/am"));
    for (const auto& name : {QStringLiteral("/am/final.mdl"), QStringLiteral("/script")}) {
        QFile file(model + name);
        EXPECT_TRUE(file.open(QIODevice::WriteOnly));
    }
    EXPECT_EQ(install(VOSK_WITHOUT_FINAL_RESULT), 65);
    EXPECT_FALSE(speech->isAvailable(locale));
    EXPECT_EQ(install(SCRIPTED_VOSK), 0);
    EXPECT_EQ(install(SCRIPTED_VOSK), 0) << "over the first";
    EXPECT_TRUE(eventually([this] { return speech->isAvailable(locale); }));
    EXPECT_EQ(reportsOf(1600), QStringList{QStringLiteral("!")});
    const auto german = QStringLiteral("vosk-model-small-de-0.15");
    given = downloads.filePath(QStringLiteral("mine"));
    EXPECT_TRUE(QFile::rename(model, given));
    EXPECT_EQ(install(SCRIPTED_VOSK), 65) << "no language";
    EXPECT_EQ(install(SCRIPTED_VOSK, {QStringLiteral("../x")}), 65);
    EXPECT_EQ(install(SCRIPTED_VOSK, {QStringLiteral("fr")}), 0);
    EXPECT_EQ(QProcess::execute(QStringLiteral("python3"),
                                {QStringLiteral("-m"), QStringLiteral("zipfile"), QStringLiteral("-c"),
                                 downloads.filePath(german + QStringLiteral(".zip")), given}),
              0);
    given = german;
    EXPECT_EQ(install(SCRIPTED_VOSK), 0) << "downloaded";
    EXPECT_EQ(speech->locales(), (QStringList{QStringLiteral("de"), QStringLiteral("fr"), QStringLiteral("zh-CN")}));
}

TEST_F(VoskTest, NothingIsLeftBehindByAnyRecognition) {
    const int threads = threadCount();
    install("1600 partial hello\n");
    EXPECT_EQ(reportsOf(1600), (QStringList{QStringLiteral("hello"), QStringLiteral("hello!")}));
    auto dropped = start();
    dropped.reset();
    EXPECT_TRUE(eventually([&] { return threadCount() == threads; }));
    // The end of the program does not wait for sound either.
    const auto task = start();
    task->cancel();
    speech.reset();
    EXPECT_EQ(threadCount(), threads);
    EXPECT_EQ(reports.texts().size(), 2);
}

TEST_F(VoskTest, AModelIsReadWhenItIsNeededAndGivenBackWhenItWasNotForTenMinutes) {
    install("1600 partial hello\n");
    EXPECT_EQ(folder.models(), 0);
    auto task = start();
    EXPECT_TRUE(eventually([this] { return hearings == 1; }));
    task.reset();
    loop.advance(9min);
    task = start();
    EXPECT_TRUE(eventually([this] { return hearings == 2; }));
    loop.advance(1h);
    EXPECT_EQ(folder.models(), 1) << "while it is in use";
    task.reset();
    loop.advance(10min);
    EXPECT_TRUE(eventually([this] { return folder.models() == 0; }));
    EXPECT_EQ(reportsOf(1600).last(), QStringLiteral("hello!"));
}

TEST_F(VoskTest, AModelThatCannotBeReadIsTriedAgainOnceItWasReplaced) {
    install("1600 partial hello\n");
    EXPECT_EQ(reportsOf(1600).last(), QStringLiteral("hello!"));
    reports.clear();
    folder.installModel("1600 partial replaced\n");
    EXPECT_EQ(reportsOf(1600).last(), QStringLiteral("replaced!"));
    reports.clear();
    QFile::remove(folder.path() + QStringLiteral("/speech/zh-CN/script"));
    EXPECT_EQ(reportsOf(1600), QStringList{QStringLiteral("unavailable")});
    EXPECT_FALSE(speech->isAvailable(locale));
    EXPECT_TRUE(log.lines().last().contains(QStringLiteral("could not be read, and is still the same")));
    install("1600 partial hello\n");
    reports.clear();
    EXPECT_EQ(reportsOf(1600).last(), QStringLiteral("hello!"));
}

TEST_F(VoskTest, ALibraryThatFailsOrTalksNonsenseEndsInOneError) {
    for (const char* script : {"1600 partial so far\n3200 fail\n", "1600 partial so far\n3200 nonsense\n"}) {
        reports.clear();
        install(script);
        EXPECT_EQ(reportsOf(16000), (QStringList{QStringLiteral("so far"), QStringLiteral("error")}));
    }
}

TEST_F(VoskTest, ChineseHasNoSpacesAndOtherWordsHave) {
    install("1600 utterance [unk] 我 用 tavrelon\n3200 utterance 写 信\n4800 partial two words\n");
    EXPECT_EQ(reportsOf(4800).last(), QStringLiteral("我用 tavrelon 写信 two words!"));
}

}  // namespace tavrelon::testing
