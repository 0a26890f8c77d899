#include "generation/server_probe.h"

#include <algorithm>
#include <map>

#include "text/json.h"

namespace tavrelon::generation {

namespace {

using text::Json;

constexpr std::chrono::milliseconds patience{300};
constexpr std::size_t mostModels = 50;

enum class Ability { Unknown, NoChat, Text, Vision };

bool holds(const Json& list, std::initializer_list<const char*> words) {
    return std::ranges::any_of(list, [&](const Json& entry) {
        return entry.is_string() && std::ranges::find(words, entry.get<std::string>()) != words.end();
    });
}

/// By llama.cpp's and Ollama's list of capabilities, or LM Studio's type.
Ability abilityIn(const Json& entry) {
    if (const auto* can = text::find(entry, "capabilities"); can && can->is_array() && !can->empty()) {
        if (holds(*can, {"vision", "multimodal"}))
            return Ability::Vision;
        return holds(*can, {"completion", "chat"}) ? Ability::Text : Ability::NoChat;
    }
    const auto* type = text::find(entry, "type");
    if (!type || !type->is_string())
        return Ability::Unknown;
    if (*type == "vlm")
        return Ability::Vision;
    return *type == "llm" ? Ability::Text : *type == "embeddings" ? Ability::NoChat : Ability::Unknown;
}

/// The answer as JSON; absent where there is none.
async::Task<std::optional<Json>> asked(platform::HttpSession& session, platform::HttpRequest request) {
    request.requestTimeout = request.resourceTimeout = patience;
    request.staysAtOrigin = true;  // these ports have other programs, too, which may send us anywhere
    const auto response = co_await session.send(std::move(request));
    if (!response || response->status != 200)
        co_return std::nullopt;
    try {
        auto json = text::parseJson(response->body);
        co_return json.is_object() ? std::optional(std::move(json)) : std::nullopt;
    } catch (const text::JsonError&) {
        co_return std::nullopt;
    }
}

platform::HttpRequest get(const QString& address) {
    return {.url = QUrl(address)};
}

/// The entries of a listing that are objects, under a key by which servers list models.
std::vector<Json> entriesUnder(const char* key, const Json& listing) {
    std::vector<Json> entries;
    if (const auto* list = text::find(listing, key); list && list->is_array())
        std::ranges::copy_if(*list, std::back_inserter(entries), &Json::is_object);
    return entries;
}

std::vector<QString> namesIn(const Json& listing) {
    std::vector<QString> names;
    for (const auto& entry : entriesUnder("data", listing))
        if (const auto name = text::firstText(entry, {"id"}); name && names.size() < mostModels)
            names.push_back(*name);
    return names;
}

/// Notes what the listing says of models that are known already.
void collect(const Json& listing, std::map<QString, Ability>& abilities) {
    for (const auto* key : {"data", "models"})
        for (const auto& entry : entriesUnder(key, listing)) {
            const auto known = abilities.find(text::firstText(entry, {"id", "model", "name"}).value_or(QString()));
            if (const auto ability = abilityIn(entry); known != abilities.end() && ability != Ability::Unknown)
                known->second = ability;
        }
}

async::Task<void> askOllama(platform::HttpSession& session, QString baseURL, std::map<QString, Ability>& abilities) {
    for (auto& [name, ability] : abilities) {
        if (ability != Ability::Unknown)
            continue;
        platform::HttpRequest request{.method = "POST", .url = QUrl(baseURL + QStringLiteral("/api/show"))};
        request.headers.emplace_back("Content-Type", "application/json");
        request.body = text::compactJson({{"model", text::toJson(name)}});
        const auto shown = co_await asked(session, std::move(request));
        if (!shown)
            co_return;  // an earlier version: the rest would not be told either
        ability = abilityIn(*shown);
    }
}

}  // namespace

const std::vector<ServerPlace>& usualServerPlaces() {
    static const std::vector<ServerPlace> places{
        {QStringLiteral("Ollama"), QStringLiteral("http://127.0.0.1:11434"), ServerPlace::Kind::Ollama},
        {QStringLiteral("llama.cpp"), QStringLiteral("http://127.0.0.1:8080"), ServerPlace::Kind::OpenAI},
        {QStringLiteral("LM Studio"), QStringLiteral("http://127.0.0.1:1234"), ServerPlace::Kind::LMStudio}};
    return places;
}

async::Task<std::optional<LocalServer>> probe(platform::HttpSession& session, ServerPlace place) {
    const auto listing = co_await asked(session, get(place.baseURL + QStringLiteral("/v1/models")));
    if (!listing)
        co_return std::nullopt;
    const auto names = namesIn(*listing);
    std::map<QString, Ability> abilities;
    for (const auto& name : names)
        abilities.emplace(name, Ability::Unknown);
    collect(*listing, abilities);
    if (place.kind == ServerPlace::Kind::LMStudio) {
        if (const auto told = co_await asked(session, get(place.baseURL + QStringLiteral("/api/v0/models"))))
            collect(*told, abilities);
    } else if (place.kind == ServerPlace::Kind::Ollama) {
        co_await askOllama(session, place.baseURL, abilities);
    }
    LocalServer server{place.title, place.baseURL, {}};
    for (const auto& name : names)
        if (abilities[name] != Ability::NoChat)
            server.models.push_back({name, abilities[name] == Ability::Text});
    co_return server.models.empty() ? std::nullopt : std::optional(std::move(server));
}

}  // namespace tavrelon::generation
