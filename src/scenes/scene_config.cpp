#include "scenes/scene_config.h"

#include "scenes/json_fields.h"

namespace tavrelon::scenes {

namespace {

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
    scene.id = readRequired(json, "id", text::uuidFrom);
    scene.name = readRequired(json, "name", text::stringFrom);
    scene.isEnabled = readRequired(json, "isEnabled", text::boolFrom);
    scene.priority = readRequired(json, "priority", text::integerFrom);
    scene.appBundleIDs = readRequired(json, "appBundleIDs", stringListFrom);
    scene.windowTitleKeywords = readRequired(json, "windowTitleKeywords", stringListFrom);
    scene.domainPatterns = readRequired(json, "domainPatterns", stringListFrom);
    scene.outputContract = readRequired(json, "outputContract", outputContractFrom);
    scene.allowScreenshot = readRequired(json, "allowScreenshot", text::boolFrom);
    scene.allowShare = readRequired(json, "allowShare", text::boolFrom);
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
