#include "scenes/scene_config.h"

namespace tavrelon::scenes {

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
    const auto field = [&](const char* key) -> const text::Json& { return text::required(json, key); };
    SceneConfig scene;
    scene.id = text::uuidFrom(field("id"));
    scene.name = text::stringFrom(field("name"));
    scene.isEnabled = text::boolFrom(field("isEnabled"));
    scene.priority = text::integerFrom(field("priority"));
    scene.appBundleIDs = stringListFrom(field("appBundleIDs"));
    scene.windowTitleKeywords = stringListFrom(field("windowTitleKeywords"));
    scene.domainPatterns = stringListFrom(field("domainPatterns"));
    scene.outputContract = outputContractFrom(field("outputContract"));
    scene.allowScreenshot = text::boolFrom(field("allowScreenshot"));
    scene.allowShare = text::boolFrom(field("allowShare"));
    return scene;
}

std::vector<SceneConfig> sceneListFrom(const text::Json& json) {
    std::vector<SceneConfig> scenes;
    for (const auto& scene : text::arrayFrom(json))
        scenes.push_back(sceneConfigFrom(scene));
    return scenes;
}

}  // namespace tavrelon::scenes
