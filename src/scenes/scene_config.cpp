#include "scenes/scene_config.h"

namespace tavrelon::scenes {

namespace {

/// The value under a key that is required; an error says which key has the fault.
template <typename Read>
auto read(const text::Json& scene, const char* key, Read from) {
    const auto& value = text::required(scene, key);
    try {
        return from(value);
    } catch (const text::JsonError& error) {
        throw text::JsonError(QStringLiteral("\"%1\": ").arg(QLatin1StringView(key)) + error.localizedDescription());
    }
}

/// "scene 2 (Mail)", for whoever wrote the list.
QString placeOf(const text::Json& scene, std::size_t index) {
    const auto place = QStringLiteral("scene %1").arg(index + 1);
    const auto name = scene.is_object() ? text::firstText(scene, {"name"}) : std::nullopt;
    return name ? place + QStringLiteral(" (%1)").arg(*name) : place;
}

}  // namespace

text::Json toJson(const SceneConfig& scene) {
    return {{"id", text::toJson(text::uuidText(scene.id))},
            {"name", text::toJson(scene.name)},
            {"isEnabled", scene.isEnabled},
            {"priority", scene.priority},
            {"appBundleIDs", toJson(scene.appBundleIDs)},
            {"windowTitleKeywords", toJson(scene.windowTitleKeywords)},
            {"domainPatterns", toJson(scene.domainPatterns)},
            {"outputContract", toJson(scene.outputContract)},
            {"allowScreenshot", scene.allowScreenshot},
            {"allowShare", scene.allowShare}};
}

text::Json toJson(const std::vector<SceneConfig>& scenes) {
    auto json = text::Json::array();
    for (const auto& scene : scenes)
        json.push_back(toJson(scene));
    return json;
}

SceneConfig sceneConfigFrom(const text::Json& json) {
    SceneConfig scene;
    scene.id = read(json, "id", text::uuidFrom);
    scene.name = read(json, "name", text::stringFrom);
    scene.isEnabled = read(json, "isEnabled", text::boolFrom);
    scene.priority = read(json, "priority", text::integerFrom);
    scene.appBundleIDs = read(json, "appBundleIDs", stringListFrom);
    scene.windowTitleKeywords = read(json, "windowTitleKeywords", stringListFrom);
    scene.domainPatterns = read(json, "domainPatterns", stringListFrom);
    scene.outputContract = read(json, "outputContract", outputContractFrom);
    scene.allowScreenshot = read(json, "allowScreenshot", text::boolFrom);
    scene.allowShare = read(json, "allowShare", text::boolFrom);
    return scene;
}

std::vector<SceneConfig> sceneListFrom(const text::Json& json) {
    std::vector<SceneConfig> scenes;
    for (const auto& scene : text::arrayFrom(json))
        try {
            scenes.push_back(sceneConfigFrom(scene));
        } catch (const text::JsonError& error) {
            throw text::JsonError(placeOf(scene, scenes.size()) + QStringLiteral(": ") + error.localizedDescription());
        }
    return scenes;
}

}  // namespace tavrelon::scenes
