#include "ui/settings/found_servers.h"

#include <array>

#include "app/provider_settings.h"

namespace tavrelon::ui {

namespace {

constexpr std::array<PageText, 4> foundTexts{{
    {u"found", u"Found on this machine", u"本机上发现"},
    {u"foundHint", u"A click sets it up. Requests then stay on this machine.", u"点击即可使用，请求将留在本机。"},
    {u"use", u"Use", u"使用"},
    {u"textOnly", u"text only, no pictures of windows", u"仅文本，不发送窗口图片"},
}};

}  // namespace

FoundServers::FoundServers(Services services)
    : PageModel(services.storage, foundTexts), services_(services), tasks_(services.mainLoop) {}

bool FoundServers::isNothingChosen() const {
    return !settings().enableNvidiaLocal && !settings().enableOllamaVision && !settings().enableCustomPollinations;
}

QVariantList FoundServers::servers() const {
    QVariantList list;
    for (const auto& server : found_) {
        if (!server)
            continue;
        QVariantList models;
        for (const auto& model : server->models)
            models.append(
                QVariantMap{{QStringLiteral("name"), model.name}, {QStringLiteral("isTextOnly"), model.isTextOnly}});
        list.append(QVariantMap{{QStringLiteral("title"), server->title},
                                {QStringLiteral("baseURL"), server->baseURL},
                                {QStringLiteral("models"), models}});
    }
    return list;
}

void FoundServers::look() {
    if (tasks_.runningCount() > 0)
        return;
    for (std::size_t place = 0; place < found_.size(); ++place)
        tasks_.spawn(ask(place));
}

void FoundServers::take(const QString& baseURL, const QString& model) {
    for (const auto& server : found_)
        if (server && server->baseURL == baseURL)
            for (const auto& served : server->models)
                if (served.name == model) {
                    app::useServer(storage(), baseURL, served);
                    Q_EMIT taken();
                    return;
                }
}

async::Task<void> FoundServers::ask(std::size_t place) {
    found_[place] = co_await generation::probe(services_.httpSession, generation::usualServerPlaces()[place]);
    Q_EMIT changed();
}

}  // namespace tavrelon::ui
