#pragma once

#include <vector>

#include "capture/captured_context.h"
#include "scenes/scene_config.h"

namespace tavrelon::scenes {

/// A scene that fits a context, and how well.
struct SceneCandidate {
    QUuid id;         ///< new for each candidate
    QString sceneID;  ///< the scene's `id` as upper-case text
    QString sceneName;
    float score = 0;      ///< 0 to 1
    QString matchReason;  ///< the signs found, joined by ", "
    SceneConfig config;
};

/// Ranks the enabled scenes by how well they fit what the user is looking at: by application, window title and words of
/// the input. Local and deterministic. Main thread.
class SceneRouter {
 public:
    SceneRouter();

    /// Takes the enabled scenes of the list; disabled ones stay out until the next update.
    void updateScenes(const std::vector<SceneConfig>& scenes);

    /// At most `topK` candidates (0 or more), best first; equal scores follow the priority, then the list. When no
    /// scene fits, the default scene alone.
    std::vector<SceneCandidate> route(const capture::CapturedContext& context, qsizetype topK) const;

    /// The scenes in use, highest priority first.
    const std::vector<SceneConfig>& sceneConfigs() const { return sceneConfigs_; }

    /// The scene of last resort. It is in no list, is never stored, and its identifier differs from run to run.
    const SceneConfig& defaultScene() const { return defaultScene_; }

 private:
    std::vector<SceneConfig> sceneConfigs_;
    SceneConfig defaultScene_;
};

}  // namespace tavrelon::scenes
