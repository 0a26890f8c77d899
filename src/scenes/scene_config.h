#pragma once

#include <QUuid>
#include <vector>

#include "scenes/output_contract.h"

namespace tavrelon::scenes {

/// A named situation, the signs by which it is recognised and the form its output must take. Identified by `id`, which
/// never changes.
struct SceneConfig {
    QUuid id = {};
    QString name = {};  ///< shown to the user; some words in it switch text signals on
    bool isEnabled = true;
    qint64 priority = 0;                   ///< higher goes first among equal scores
    QStringList appBundleIDs = {};         ///< empty: any application
    QStringList windowTitleKeywords = {};  ///< compared without regard to case
    QStringList domainPatterns = {};       ///< kept, not read by routing
    OutputContract outputContract = {};
    bool allowScreenshot = true;
    bool allowShare = false;

    bool operator==(const SceneConfig&) const = default;
};

text::Json toJson(const SceneConfig& scene);
text::Json toJson(const std::vector<SceneConfig>& scenes);

/// Both throw `text::JsonError`; all ten keys are required, and one faulty scene fails the whole list, and the
/// error names it and its key.
SceneConfig sceneConfigFrom(const text::Json& json);
std::vector<SceneConfig> sceneListFrom(const text::Json& json);

/// The built-in scenes, with new random identifiers at each call.
std::vector<SceneConfig> defaultScenes();

}  // namespace tavrelon::scenes
