#include "gallery/dashboard_gallery_pages.h"

#include <QPainter>

#include "ui/history/history_model.h"
#include "ui/settings/clone_settings_model.h"
#include "ui/settings/provider_settings_model.h"

namespace tavrelon::testing {

using namespace Qt::StringLiterals;
using ui::DashboardTab;

namespace {

void forgetSettings(DashboardGallery& gallery) {
    gallery.change([](auto& settings) {
        settings = persistence::defaultSettings();
        settings.hasAnswered = true;
    });
}

FakeHttpSession::Reply modelList(int count) {
    QByteArray names;
    for (int index = 1; index <= count; ++index)
        names += (index > 1 ? ",{\"name\":\"model-" : "{\"name\":\"model-") + QByteArray::number(index) + "\"}";
    return {platform::HttpResponse{
        .status = 200, .headers = {{"Content-Type", "application/json"}}, .body = "{\"models\":[" + names + "]}"}};
}

/// The item of a class of the views that is in sight.
QQuickItem* itemNamed(QQuickItem* root, QLatin1StringView view) {
    if (QLatin1StringView(root->metaObject()->className()).startsWith(view))
        return root;
    for (auto* child : root->childItems())
        if (auto* found = itemNamed(child, view))
            return found;
    return nullptr;
}

void learnFrom(DashboardGallery& shown, const QString& path) {
    auto& page = shown.page<ui::CloneSettingsModel>();
    shown.picker.choices.push_back(QUrl::fromLocalFile(path));
    page.chooseFile();
    shown.desktop.loop.runUntilIdle();
    page.learnFromFile();
}

persistence::HistoryEntry minutesAgo(int minutes, persistence::HistoryEntry entry) {
    entry.id = QUuid::createUuid();
    entry.timestamp = std::chrono::system_clock::now() - std::chrono::minutes(minutes);
    return entry;
}

void drawSunset(const QString& path) {
    QImage picture(1600, 1000, QImage::Format_RGB32);
    QPainter painter(&picture);
    QLinearGradient sky(0, 0, 1600, 1000);
    sky.setColorAt(0, QColor(20, 40, 90));
    sky.setColorAt(0.6, QColor(230, 120, 90));
    sky.setColorAt(1, QColor(250, 220, 150));
    painter.fillRect(picture.rect(), sky);
    painter.setPen(Qt::NoPen);
    painter.setBrush(QColor(255, 240, 200));
    painter.drawEllipse(QPoint(1100, 500), 160, 160);
    painter.end();
    picture.save(path);
}

void fillHistory(persistence::HistoryManager& history, const QString& picture) {
    const auto mail = u"org.mozilla.thunderbird"_s;
    const auto mailName = u"Thunderbird with a rather long name"_s;
    history.addEntry(minutesAgo(3000, {.appName = u"Mousepad"_s,
                                       .inputText = u"translate to German: the meeting is moved to Thursday"_s,
                                       .outputText = u"Die Besprechung wurde auf Donnerstag verschoben."_s}));
    history.addEntry(minutesAgo(2000, {.appName = u"Firefox"_s,
                                       .inputText = u"اكتب رسالة شكر قصيرة"_s,
                                       .outputText = u"شكراً جزيلاً على وقتك ومساعدتك. أقدّر ذلك كثيراً."_s}));
    history.addEntry(minutesAgo(1000, {.appBundleID = mail,
                                       .appName = mailName,
                                       .inputText = u"decline politely"_s,
                                       .outputText = u"Thank you for the invitation.\n\nUnfortunately I cannot make "
                                                     "it that week; I hope there will be another occasion soon."_s,
                                       .wasEdited = true,
                                       .editedText = u"Thank you for the kind invitation. I cannot make it, alas."_s,
                                       .retryCount = 2}));
    history.addEntry(minutesAgo(500, {.appBundleID = mail,
                                      .appName = mailName,
                                      .inputText = u"画一幅海边的日落"_s,
                                      .outputText = u"图片已复制到剪贴板"_s,
                                      .outputImagePath = picture}));
    history.addEntry(minutesAgo(100, {.appBundleID = mail,
                                      .appName = mailName,
                                      .inputText = u"请把这段话改得更正式一些：我们下周再聊吧"_s,
                                      .outputText = u"建议将后续讨论安排在下周进行。"_s,
                                      .wasReverted = true}));
}

}  // namespace

void pictureClone(DashboardGallery& gallery) {
    gallery.picture(u"clone"_s, DashboardTab::clone);
    gallery.change([](auto& settings) {
        settings.cloneSystemPrompt =
            u"# Role & Identity\nI am Ada, who writes letters in long, precise sentences.\n\n# Constraints\n"_s +
            u"- Keep paragraphs short where the matter is practical.\n"_s.repeated(20);
        settings.cloneLanguageStyle = u"Dry, exact, warm underneath; semicolons; British spelling."_s;
        settings.cloneLanguageStyleUpdatedAt = std::chrono::system_clock::now();
        settings.cloneSource = u"NVIDIA Nemotron Nano 12B VL (integrate.api.nvidia.com)"_s;
    });
    const auto letters = u"/home/ada/Documents/letters to my brother, collected and annotated in 1842.pdf"_s;
    gallery.desktop.documentReader.put(letters, u"too short"_s);
    gallery.picture(u"clone-failed"_s, DashboardTab::clone, [&](DashboardGallery& shown) {
        learnFrom(shown, letters);
        shown.desktop.loop.advance(std::chrono::seconds(1));
    });
    gallery.picture(u"clone-learned"_s, DashboardTab::clone, [](DashboardGallery& shown) { shown.scrollDown(); });
    gallery.picture(u"clone-learning"_s, DashboardTab::clone, [&](DashboardGallery& shown) {
        shown.desktop.documentReader.put(letters, u"0123456789"_s.repeated(20));
        shown.desktop.httpSession.neverAnswer();
        learnFrom(shown, letters);
    });
    gallery.desktop.loop.advance(std::chrono::hours(1));  // the learning gives up
    forgetSettings(gallery);
}

std::optional<FakeHttpSession::Reply> machineWithOllama(const platform::HttpRequest& request) {
    const auto path = request.url.path();
    if (request.url.port() != 11434)
        return FakeHttpSession::Reply{
            std::unexpected(platform::HttpError{.description = u"Could not connect to the server."_s})};
    const auto* capabilities = request.body.contains("llava") ? R"(["completion","vision"])" : R"(["completion"])";
    const QByteArray body = path == "/v1/models"_L1 ? QByteArray(R"({"data":[{"id":"llava:7b"},{"id":"qwen2.5:3b"}]})")
                            : path == "/api/show"_L1
                                ? QByteArray(R"({"capabilities":)") + capabilities + '}'
                                : QByteArray(R"({"choices":[{"message":{"role":"assistant","content":"ready"}}]})");
    return FakeHttpSession::Reply{
        platform::HttpResponse{.status = 200, .headers = {{"Content-Type", "application/json"}}, .body = body}};
}

void pictureProviders(DashboardGallery& gallery) {
    using ui::ProviderSettingsModel;
    gallery.picture(u"providers"_s, DashboardTab::providers, [](DashboardGallery& shown) {
        shown.settle();
        shown.desktop.loop.runUntilIdle();
    });
    gallery.picture(u"providers-nvidia"_s, DashboardTab::providers,
                    [](DashboardGallery& shown) { shown.page<ProviderSettingsModel>().setEnableNvidiaLocal(true); });
    gallery.picture(u"providers-pollinations"_s, DashboardTab::providers, [](DashboardGallery& shown) {
        auto& page = shown.page<ProviderSettingsModel>();
        page.select(u"pollinations"_s);
        page.setEnableCustomPollinations(true);
        page.setPollinationsImageModel({});
        shown.scrollDown();
    });
    gallery.picture(u"providers-ollama-local"_s, DashboardTab::providers, [](DashboardGallery& shown) {
        auto& page = shown.page<ProviderSettingsModel>();
        page.select(u"ollama"_s);
        page.setOllamaMode(u"local"_s);
        page.setEnableOllamaVision(true);
        shown.scrollDown();
    });
    const auto openCloud = [](DashboardGallery& shown) {
        auto& page = shown.page<ProviderSettingsModel>();
        page.setOllamaMode(u"cloud"_s);
        page.setEnableOllamaVision(true);
        page.select(u"ollama"_s);
        shown.scrollDown();
    };
    auto& session = gallery.desktop.httpSession;
    session.otherwise = [](const auto&) {
        return FakeHttpSession::Reply{
            std::unexpected(platform::HttpError{.description = u"The network connection was lost."_s})};
    };
    gallery.picture(u"providers-ollama-cloud"_s, DashboardTab::providers, openCloud);
    session.otherwise = [](const auto&) { return modelList(10'000); };
    gallery.picture(u"providers-ollama-menu"_s, DashboardTab::providers, [&](DashboardGallery& shown) {
        shown.page<ProviderSettingsModel>().setOllamaCloudModel(u"model-1002"_s);
        openCloud(shown);
        shown.settle();
        if (auto* picker = itemNamed(shown.window()->contentItem(), "CloudModelPicker"_L1))
            QMetaObject::invokeMethod(picker, "triggered");
    });
    session.otherwise = machineWithOllama;
    forgetSettings(gallery);
    gallery.picture(u"providers-tested"_s, DashboardTab::providers, [](DashboardGallery& shown) {
        auto& page = shown.page<ProviderSettingsModel>();
        shown.desktop.loop.runUntilIdle();
        page.found()->take(u"http://127.0.0.1:11434"_s, u"llava:7b"_s);
        page.trial()->start();
        shown.desktop.loop.runUntilIdle();
        shown.scrollDown();
    });
    session.otherwise = [](const auto&) {
        return FakeHttpSession::Reply{
            std::unexpected(platform::HttpError{.description = u"Could not connect to 127.0.0.1."_s})};
    };
    gallery.picture(u"providers-test-failed"_s, DashboardTab::providers, [](DashboardGallery& shown) {
        shown.page<ProviderSettingsModel>().trial()->start();
        shown.desktop.loop.runUntilIdle();
        shown.scrollDown();
    });
    session.otherwise = machineWithOllama;
    forgetSettings(gallery);
}

void pictureHistory(DashboardGallery& gallery) {
    const auto picture = u"history-images/00000000-0000-0000-0000-000000000001.jpg"_s;
    QDir(gallery.files.path()).mkdir(u"history-images"_s);
    drawSunset(gallery.files.filePath(picture));
    gallery.picture(u"history"_s, DashboardTab::history);
    fillHistory(gallery.appState.historyManager(), picture);
    const auto choose = [](const QString& application) {
        return [application](DashboardGallery& shown) { shown.page<ui::HistoryModel>().selectApp(application); };
    };
    gallery.picture(u"history-list"_s, DashboardTab::history);
    gallery.picture(u"history-conversation"_s, DashboardTab::history, choose(u"org.mozilla.thunderbird"_s));
    gallery.picture(u"history-picture"_s, DashboardTab::history, [&](DashboardGallery& shown) {
        choose(u"org.mozilla.thunderbird"_s)(shown);
        shown.scrollDown();
    });
    gallery.picture(u"history-right-to-left"_s, DashboardTab::history, choose(u"Firefox"_s));
    gallery.picture(u"history-cleared"_s, DashboardTab::history,
                    [](DashboardGallery& shown) { shown.page<ui::HistoryModel>().clear(); });
    gallery.desktop.loop.advance(app::UndoOffers::timeToUndo);
}

}  // namespace tavrelon::testing
