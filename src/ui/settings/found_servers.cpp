#include "ui/settings/found_servers.h"

namespace tavrelon::ui {

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
                if (served.name == model)
                    return taken_(baseURL, generation::ServedModel(served));
}

async::Task<void> FoundServers::ask(std::size_t place) {
    found_[place] = co_await generation::probe(session_, generation::usualServerPlaces()[place]);
    Q_EMIT changed();
}

}  // namespace tavrelon::ui
