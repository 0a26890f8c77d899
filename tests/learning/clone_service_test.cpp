#include "learning/clone_service.h"

#include <gmock/gmock.h>

#include "generation/gateway_fixture.h"
#include "learning/clone_error.h"
#include "learning/clone_scrape.h"
#include "support/fake_document_reader.h"

namespace tavrelon::learning {

using namespace Qt::StringLiterals;
using std::chrono::seconds;
using Code = CloneServiceError::Code;
using HttpCode = platform::HttpError::Code;

class CloneServiceTest : public testing::GatewayFixture {
 public:
    const QString page = u"https://people.test/zoe"_s;
    const QString samples = u"I write like this. "_s.repeated(10);
    const QString good = uR"({"system_prompt": "Be Zoe.", "language_style": "dry"})"_s;
    testing::FakeDocumentReader documents{loop};
    CloneService clone = serviceAt(u" http://scrape.test/base/ "_s);

    CloneService serviceAt(const QString& baseURL) {
        return CloneService(http, documents, service, baseURL, u"http://127.0.0.1:3002"_s);
    }
    CloneProfile learnText(const QString& text) { return runTask(loop, clone.learn(text, CloneInput::Text)); }
    CloneProfile learnPage(const QString& address) { return runTask(loop, clone.learn(address, CloneInput::Page)); }

    /// What the user reads of the failure of `work`.
    template <typename Work>
    QString failure(Work work, text::Language language = text::Language::English) {
        try {
            work();
        } catch (const std::exception& error) {
            return text::descriptionOf(error).in(language);
        }
        return u"no error"_s;
    }
    void answerMarkdown(const QString& text) {
        http.answer(200, text::compactJson({{"success", true}, {"data", {{"markdown", text::toJson(text)}}}}));
    }
    QString heardSamples(std::size_t index) const { return text::stringFrom(body(index)["messages"][1]["content"]); }
};

TEST_F(CloneServiceTest, SamplesAreCountedAfterTheirWhiteSpaceIsNormalised) {
    const auto spread = [](qsizetype count) { return u"字\r\n\n\t "_s.repeated(count / 2) + u"  \n"_s; };
    EXPECT_EQ(failure([&] { learnText(spread(100)); }), u"Content must be at least 100 characters."_s) << "99";
    EXPECT_EQ(http.requests().size(), 0U);
    http.answer(200, chatReply(good));
    EXPECT_EQ(learnText(spread(102)),
              (CloneProfile{u"Be Zoe."_s, u"dry"_s, u"NVIDIA Nemotron Nano 12B VL (nvidia.test)"_s}));
    EXPECT_EQ(heardSamples(0), u"Samples:\n"_s + u"字 "_s.repeated(51).trimmed());

    http.answer(200, chatReply(good));
    learnText(u"👍🏽"_s.repeated(9000));
    EXPECT_EQ(heardSamples(1), u"Samples:\n"_s + u"👍🏽"_s.repeated(8000));
    EXPECT_EQ(body(1)["max_tokens"], 1400);
}

TEST_F(CloneServiceTest, TheWalkGoesOnUntilAReplyHoldsAProfile) {
    http.answer(200, chatReply(uR"({"language_style": "y"})"_s));
    http.answer(500, "out of order");
    http.answer(200, chatReply(u"Sure!\n```json\n"_s + good + u"\n```"_s));
    EXPECT_EQ(learnText(samples).systemPrompt, u"Be Zoe."_s);
    EXPECT_EQ(askedModels(), (QStringList{u"nvidia/nemotron-nano-12b-v2-vl"_s, u"openai"_s, u"glm-4v-flash"_s}));
    EXPECT_EQ(body(1)["response_format"], (text::Json{{"type", "json_object"}}));

    for (int model = 0; model < 2; ++model)
        http.fail(HttpCode::Transport, u"no route"_s);
    http.answer(200, chatReply(u"I would rather not."_s));
    EXPECT_EQ(failure([&] { learnText(samples); }), u"Invalid response from server."_s) << "the last model's error";
    service.configuration.pollinationsCustomEnabled = true;
    service.configuration.pollinationsVisionModelOverride = u"mine"_s;
    http.answer(200, chatReply(good));
    learnText(samples);
    EXPECT_EQ(askedModels().last(), u"mine"_s) << "the user's own goes first";
    service.configuration.pollinationsCustomEnabled = false;
    service.configuration.textModels.clear();
    EXPECT_EQ(failure([&] { learnText(samples); }), u"Invalid response from server."_s);
}

TEST_F(CloneServiceTest, AProfileIsFoundUnderItsManyNames) {
    const auto parsed = [](const char* reply) { return parseCloneProfile(QString::fromUtf8(reply)); };
    EXPECT_EQ(parsed(R"({"persona": {"systemPrompt": " x ", "styles": {"language": "y"}}})"),
              (CloneProfile{u"x"_s, u"y"_s}));
    EXPECT_EQ(parsed(R"({"persona": {"systemPrompt": " ", "system_prompt": "x"}, "languageStyle": "y"})"),
              (CloneProfile{u"x"_s, u"y"_s}));
    EXPECT_EQ(parsed(R"({"persona": {"styles": {"language": "unused"}}, "systemPrompt": "x"})"),
              (CloneProfile{u"x"_s, {}}));
    EXPECT_EQ(parsed(R"({"persona": [], "system_prompt": "x", "systemPrompt": "z", "language_style": 3})"),
              (CloneProfile{u"x"_s, {}}));
    EXPECT_EQ(failure([&] { parsed(R"({"language_style": "y", "system_prompt": "\n"})"); }),
              u"System prompt not returned by server."_s);
    for (const char* reply : {"", "[]", "{", "\"{\""})
        EXPECT_EQ(failure([&] { parsed(reply); }), u"Invalid response from server."_s) << reply;
}

TEST_F(CloneServiceTest, APageIsScrapedWhole) {
    answerMarkdown(samples);
    http.answer(200, chatReply(good));
    EXPECT_EQ(learnPage(u"\n "_s + page).languageStyle, u"dry"_s);
    const auto& request = http.requests().at(0);
    EXPECT_EQ(request.url, QUrl(u"http://scrape.test/base/v0/scrape"_s));
    EXPECT_EQ(request.method, "POST");
    EXPECT_EQ(header(request, "Content-Type"), "application/json");
    EXPECT_EQ(header(request, "Accept"), "application/json");
    EXPECT_EQ(request.requestTimeout, seconds(60));
    EXPECT_EQ(request.resourceTimeout, seconds(90));
    EXPECT_EQ(request.body, QByteArray(R"({"url":"https://people.test/zoe","pageOptions":{"onlyMainContent":false,)"
                                       R"("includeHtml":true,"waitFor":2000}})"));
    EXPECT_EQ(heardSamples(1), u"Samples:\n"_s + samples.trimmed());
}

TEST_F(CloneServiceTest, AnyFailureOfTheFirstAttemptLeadsToALighterOne) {
    for (int failed = 0; failed < 5; ++failed) {
        const std::array<std::function<void()>, 5> failures{
            [&] { http.answer(500, "first"); }, [&] { http.neverAnswer(); }, [&] { http.answer(200, "<html>"); },
            [&] { http.answer(200, R"({"success": true, "data": {"markdown": " "}})"); },
            [&] { http.answer(200, R"({"success": false, "error": " blocked "})"); }};
        const auto before = http.requests().size();
        failures.at(static_cast<std::size_t>(failed))();
        answerMarkdown(samples);
        http.answer(200, chatReply(good));
        EXPECT_EQ(learnPage(page).systemPrompt, u"Be Zoe."_s) << failed;
        EXPECT_EQ(body(before + 1)["pageOptions"],
                  (text::Json{{"onlyMainContent", true}, {"includeHtml", false}, {"waitFor", 0}}));
        EXPECT_EQ(http.requests().at(before + 1).requestTimeout, seconds(45));
    }
}

TEST_F(CloneServiceTest, TheSecondAttemptsFailureIsWhatTheUserReads) {
    const auto scraping = [&] { learnPage(page); };
    http.answer(500, "first");
    http.answer(500, "Rate limit reached.");
    EXPECT_EQ(failure(scraping, text::Language::Chinese), u"Rate limit reached."_s);
    http.answer(500, "first");
    http.answer(502, "");
    EXPECT_EQ(failure(scraping), u"Invalid response from server."_s);
    http.answer(500, "first");
    http.answer(502, "\xff");
    EXPECT_EQ(failure(scraping), u"HTTP 502"_s);
    http.answer(500, "first");
    http.neverAnswer();
    EXPECT_EQ(failure(scraping), u"Scrape timed out. Try again or use file/text instead."_s);
    http.answer(500, "first");
    http.fail(HttpCode::Transport, u"Connection refused"_s);
    EXPECT_EQ(failure(scraping), u"Connection refused"_s);
    http.answer(500, "first");
    http.fail(HttpCode::NotHttp, u"?"_s);
    EXPECT_EQ(failure(scraping, text::Language::Chinese), u"服务器响应无效。"_s);
    http.answer(500, "first");
    http.answer(200, R"({"success": false, "error": 3, "message": " Page not found. "})");
    EXPECT_EQ(failure(scraping), u"Page not found."_s);
    answerMarkdown(u"too short"_s);
    EXPECT_EQ(failure(scraping, text::Language::Chinese), u"内容至少需要 100 个字符。"_s);

    const auto asked = http.requests().size();
    EXPECT_EQ(failure([&] { learnPage(u" \n"_s); }), u"Invalid response from server."_s);
    EXPECT_EQ(http.requests().size(), asked);
    EXPECT_EQ(http.unused(), 0U);
}

TEST_F(CloneServiceTest, ACancelledLearningAsksNoFurther) {
    http.neverAnswer();
    async::TaskScope scope(loop);
    const auto handle = scope.spawn([](CloneService& service, QString address) -> async::Task<void> {
        co_await service.learn(address, CloneInput::Page);
    }(clone, page));
    loop.advance(seconds(1));
    handle.cancel();
    loop.advance(seconds(300));
    EXPECT_EQ(http.requests().size(), 1U);
    EXPECT_EQ(scope.runningCount(), 0U);
}

TEST_F(CloneServiceTest, TheRecordOfAPageStandsInSeveralPlaces) {
    const auto texts = [](const QByteArray& answer) { return clone_scrape::parseScrapeResponse(answer).texts; };
    EXPECT_EQ(texts(R"({"data": {"metadata": {"title": " T ", "description": "D"}, "content": "C", "text": "x"}})"),
              (QStringList{u"T"_s, u"D"_s, u"C"_s}));
    EXPECT_EQ(texts(R"({"data": [{"text": "first"}, {"text": "second"}], "text": "top"})"), QStringList{u"first"_s});
    EXPECT_EQ(texts(R"({"data": [{"text": "first"}, 3], "text": "top"})"), QStringList{u"top"_s});
    EXPECT_EQ(texts(R"({"data": [], "metadata": [], "markdown": "\n", "content": {}, "text": "top"})"),
              QStringList{u"top"_s});
    EXPECT_EQ(texts(R"({"success": "false", "text": "top"})"), QStringList{u"top"_s}) << "only the boolean counts";
    EXPECT_THROW(texts("[]"), CloneServiceError);
    EXPECT_THROW(texts(""), text::JsonError);
}

TEST_F(CloneServiceTest, HtmlIsImportedOnlyWhereThereIsNoText) {
    const auto scrape = [&](const text::Json& record) {
        http.answer(200, text::compactJson({{"data", record}}));
        http.answer(200, chatReply(good));
        learnPage(page);
        return heardSamples(http.requests().size() - 1).sliced(9);
    };
    const auto letters = QString(100, u'é');
    const auto html = text::toJson(u"<p>"_s + letters + u"</p>"_s);
    EXPECT_EQ(scrape({{"html", html}, {"metadata", {{"title", "Zoé"}}}}), u"Zoé "_s + letters);
    EXPECT_EQ(scrape({{"html", html}, {"text", text::toJson(u"t"_s.repeated(120))}}), u"t"_s.repeated(120));
    EXPECT_EQ(documents.markups, QList<QByteArray>{(u"\ufeff<p>"_s + letters + u"</p>"_s).toUtf8()});
    documents.refuseHtml = true;
    EXPECT_EQ(scrape({{"html", html}}), u"<p>"_s + letters + u"</p>"_s);
}

TEST_F(CloneServiceTest, APageIsFetchedAsItIsWhereThereIsNoService) {
    auto alone = serviceAt(u" "_s);
    const auto learn = [&](const QString& address) { return runTask(loop, alone.learn(address, CloneInput::Page)); };
    const auto noService = [&] {
        http.fail(HttpCode::Transport, u"refused"_s);
        http.fail(HttpCode::Transport, u"refused"_s);
    };
    noService();
    http.answer(200, samples.toUtf8(), "text/html; charset=GBK");
    http.answer(200, chatReply(good));
    EXPECT_EQ(learn(u"people.test/zoe"_s).systemPrompt, u"Be Zoe."_s);
    EXPECT_EQ(http.requests().at(2).url, QUrl(page));
    EXPECT_EQ(documents.markups.last(), "<meta charset=gbk>" + samples.toUtf8());
    for (const auto& [type, status, told] : {std::tuple("application/pdf", 200, u"Invalid response from server."_s),
                                             std::tuple("text/html", 404, u"HTTP 404"_s)}) {
        noService();
        http.answer(status, "%PDF", type);
        EXPECT_EQ(failure([&] { learn(page); }), told);
    }
    noService();
    EXPECT_EQ(failure([&] { learn(u"file:///etc/passwd"_s); }), u"Invalid response from server."_s);
    EXPECT_EQ(http.unused(), 0U);
}

TEST_F(CloneServiceTest, TheAddressOfTheServiceIsReadAsItIsMeant) {
    const auto url = [](const QString& base) { return clone_scrape::scrapeUrl(base, u"http://127.0.0.1:3002/"_s); };
    EXPECT_EQ(url(u"host:3002"_s), QUrl(u"http://host:3002/v0/scrape"_s));
    EXPECT_EQ(url(u"https://host/api/"_s), QUrl(u"https://host/api/v0/scrape"_s));
    EXPECT_EQ(url(u"localhost"_s), QUrl(u"http://localhost/v0/scrape"_s));
    for (const auto& base : {u""_s, u" \n"_s, u"not a host"_s})
        EXPECT_EQ(url(base), QUrl(u"http://127.0.0.1:3002/v0/scrape"_s)) << base.toStdString();
    EXPECT_EQ(failure([] { clone_scrape::scrapeUrl({}, u"nowhere:"_s); }), u"Set a valid API base URL."_s);

    auto blank = serviceAt(u"  "_s);
    http.answer(500, "");
    http.answer(500, "");
    EXPECT_EQ(failure([&] { runTask(loop, blank.learn(page, CloneInput::Page)); }), u"Invalid response from server."_s);
    EXPECT_EQ(http.requests().at(0).url, QUrl(u"http://127.0.0.1:3002/v0/scrape"_s));
}

TEST_F(CloneServiceTest, TheEndingOfAFileTellsItsFormat) {
    using Format = platform::DocumentFormat;
    const std::vector<std::pair<QString, Format>> files{
        {u"/d/a.PDF"_s, Format::Pdf},     {u"/d/a.rtf"_s, Format::Rtf},       {u"/d/a.rtfd"_s, Format::Rtf},
        {u"/d/a.HTM"_s, Format::Html},    {u"/d/a.html"_s, Format::Html},     {u"/d/a.md"_s, Format::PlainText},
        {u"/d/pdf"_s, Format::PlainText}, {u"/d.pdf/a"_s, Format::PlainText}, {u"/d/a\nb c.csv"_s, Format::PlainText}};
    for (const auto& [path, format] : files) {
        documents.put(path, u"text of "_s + path);
        EXPECT_EQ(runTask(loop, clone.readFileText(QUrl::fromLocalFile(path))), u"text of "_s + path);
    }
    EXPECT_EQ(documents.files, files);
    runTask(loop, clone.readFileText(QUrl(u"file:///d/a.rtfd/"_s)));
    EXPECT_EQ(documents.files.back(), (std::pair{u"/d/a.rtfd"_s, Format::Rtf}));
}

}  // namespace tavrelon::learning
