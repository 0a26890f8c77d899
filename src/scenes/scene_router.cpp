#include "scenes/scene_router.h"

#include <algorithm>
#include <functional>
#include <initializer_list>

#include "text/characters.h"

namespace tavrelon::scenes {

namespace {

constexpr float appWeight = 0.4F;
constexpr float titleWeight = 0.3F;
constexpr float emailWeight = 0.2F;
constexpr float codeWeight = 0.2F;
constexpr float chatWeight = 0.1F;
constexpr float unmatchedScore = 0.1F;
constexpr float defaultSceneScore = 0.5F;
constexpr qsizetype longestChatMessage = 99;  // characters

bool containsAny(const QString& text, std::initializer_list<QStringView> words) {
    return std::ranges::any_of(words, [&](QStringView word) { return text.contains(word); });
}

bool nameHas(const QString& name, QStringView chinese, QStringView english) {
    return name.contains(chinese) || name.toLower().contains(english);
}

/// The scene's name selects which signs count; the input gives them.
float textSignal(const QString& input, const QString& name) {
    float signal = 0;
    if (nameHas(name, u"邮件", u"email") &&
        containsAny(input, {u"尊敬的", u"您好", u"Dear", u"Hi ", u"敬礼", u"Regards"}))
        signal += emailWeight;
    if (nameHas(name, u"代码", u"code") &&
        containsAny(input, {u"function", u"def ", u"class ", u"import ", u"//", u"/*"}))
        signal += codeWeight;
    if (nameHas(name, u"聊天", u"chat") && !input.contains(u'\n') && text::characterCount(input) <= longestChatMessage)
        signal += chatWeight;
    return signal;
}

SceneCandidate candidateFor(const SceneConfig& scene, float score, QString reason) {
    return {QUuid::createUuid(), text::uuidText(scene.id), scene.name, score, std::move(reason), scene};
}

std::optional<SceneCandidate> scored(const SceneConfig& scene, const capture::CapturedContext& context) {
    float score = 0;
    QStringList reasons;
    const bool bound = !scene.appBundleIDs.isEmpty();
    if (context.appBundleID && bound) {
        if (!scene.appBundleIDs.contains(*context.appBundleID))
            return std::nullopt;
        score = appWeight;
        reasons << QStringLiteral("App: ") + context.appName.value_or(*context.appBundleID);
    }
    if (context.windowTitle) {
        // A title never holds the empty keyword: it would make every window match.
        const auto found = std::ranges::find_if(scene.windowTitleKeywords, [&](const QString& keyword) {
            return !keyword.isEmpty() && text::containsIgnoringCase(*context.windowTitle, keyword);
        });
        if (found != scene.windowTitleKeywords.end()) {
            score += titleWeight;
            reasons << QStringLiteral("窗口: ") + *found;
        }
    }
    if (const float signal = textSignal(context.inputBuffer, scene.name); signal > 0) {
        score += signal;
        reasons << QStringLiteral("内容匹配");
    }
    if (score <= 0) {
        if (bound)  // the application is unknown and nothing else speaks for the scene
            return std::nullopt;
        score = unmatchedScore;
        reasons << QStringLiteral("优先级: ") + QString::number(scene.priority);
    }
    return candidateFor(scene, std::min(score, 1.0F), reasons.join(QStringLiteral(", ")));
}

/// Keeps `ranked` in falling order of `rank`, and equals in the order of their coming.
template <typename Item, typename Rank>
void insertRanked(std::vector<Item>& ranked, Item item, Rank Item::* rank) {
    const auto place = std::ranges::upper_bound(ranked, item.*rank, std::greater{}, rank);
    ranked.insert(place, std::move(item));
}

}  // namespace

SceneRouter::SceneRouter() {
    defaultScene_.id = QUuid::createUuid();
    defaultScene_.name = QStringLiteral("通用场景");
}

void SceneRouter::updateScenes(const std::vector<SceneConfig>& scenes) {
    sceneConfigs_.clear();
    for (const auto& scene : scenes)
        if (scene.isEnabled)
            insertRanked(sceneConfigs_, scene, &SceneConfig::priority);
}

std::vector<SceneCandidate> SceneRouter::route(const capture::CapturedContext& context, qsizetype topK) const {
    Q_ASSERT(topK >= 0);
    std::vector<SceneCandidate> candidates;
    for (const auto& scene : sceneConfigs_)
        if (auto candidate = scored(scene, context))
            insertRanked(candidates, std::move(*candidate), &SceneCandidate::score);
    if (candidates.empty())
        candidates.push_back(candidateFor(defaultScene_, defaultSceneScore, QStringLiteral("默认场景")));
    candidates.erase(candidates.begin() + std::min<std::ptrdiff_t>(topK, std::ssize(candidates)), candidates.end());
    return candidates;
}

}  // namespace tavrelon::scenes
