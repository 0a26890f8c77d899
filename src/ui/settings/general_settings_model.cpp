#include "ui/settings/general_settings_model.h"

#include <array>

#include "text/pieces.h"
#include "ui/settings/date_text.h"

namespace tavrelon::ui {

using persistence::AppSettings;

namespace {

constexpr QLatin1StringView speed("speed");
constexpr QLatin1StringView quality("quality");

constexpr std::array<PageText, 22> pageTexts{{
    {u"faulty", u"These settings could not be read, and their defaults serve: ", u"以下设置无法读取，已使用默认值："},
    {u"vision", u"Vision Preference", u"视觉偏好"},
    {u"visionHint", u"Prioritize speed or quality for vision models", u"选择视觉模型的速度或质量优先级"},
    {u"speed", u"Speed", u"速度优先"},
    {u"quality", u"Quality", u"质量优先"},
    {u"speedWarning", u"Fast model quality is currently lower.", u"高速模型目前效果不佳"},
    {u"think", u"Think", u"思考"},
    {u"thinkHint", u"Use /think for vision replies", u"视觉回复时使用 /think"},
    {u"memory", u"Local Memory", u"本地记忆"},
    {u"memoryHint", u"After every 40 requests the model service reads them and describes how you write",
     u"每 40 次请求后，模型服务会阅读它们并描述您的写作风格"},
    {u"forget", u"Forget", u"忘记"},
    {u"forgetHint", u"Empties what was gathered and the learned voice; clearing the history does too",
     u"清除已收集的内容和已学习的语气；清除历史记录时也会一并清除"},
    {u"forgotten", u"Nothing of your requests is kept for learning now.", u"现在没有保留任何用于学习的请求内容。"},
    {u"learned", u"Learned Voice", u"已学习的语气"},
    {u"share", u"Share Improvements", u"分享改进"},
    {u"shareHint", u"Help improve products", u"帮助改进产品"},
    {u"enhancement", u"Image Prompt Enhancement", u"图片提示增强"},
    {u"enhancementHint", u"Enhances prompts and blocks NSFW", u"增强提示词并屏蔽敏感内容"},
    {u"pictures", u"Pictures by Request", u"按要求生成图片"},
    {u"picturesHint", u"A request that asks for a picture is answered with one", u"要求图片的请求以图片回答"},
    {u"clipboard", u"Keep my clipboard", u"保留我的剪贴板"},
    {u"clipboardHint", u"Give its earlier content back after an answer is pasted", u"粘贴回答后恢复剪贴板原有内容"},
}};

}  // namespace

GeneralSettingsModel::GeneralSettingsModel(FoundServers::Services services, std::function<void()> forgetLearned)
    : PageModel(services.storage, pageTexts), firstSteps_(services), forgetLearned_(std::move(forgetLearned)) {}

void GeneralSettingsModel::forget() {
    hasForgotten_ = true;
    forgetLearned_();
    Q_EMIT changed();
}

QStringList GeneralSettingsModel::learnedPieces() const {
    const auto& learned = settings().adaptiveSystemPrompt;
    const auto pieces = text::piecesOf(learned);
    return learned.isEmpty() ? QStringList() : QStringList(pieces.begin(), pieces.end());
}

QString GeneralSettingsModel::learnedAt() const {
    return dateText(settings().adaptiveSystemPromptUpdatedAt);
}

QString GeneralSettingsModel::visionModelPreference() const {
    return settings().visionModelPreference == quality ? quality : speed;
}

void GeneralSettingsModel::setVisionModelPreference(const QString& preference) {
    if (preference != speed && preference != quality)
        return;
    store([&](AppSettings& settings) { settings.visionModelPreference = preference; });
}

void GeneralSettingsModel::setThinkEnabled(bool enabled) {
    store([&](AppSettings& settings) { settings.enableNvidiaThink = enabled; });
}

void GeneralSettingsModel::setLocalLearningEnabled(bool enabled) {
    store([&](AppSettings& settings) { settings.enableLocalLearning = enabled; });
}

void GeneralSettingsModel::setSharesImprovements(bool shares) {
    store([&](AppSettings& settings) { settings.shareImprovements = shares; });
}

void GeneralSettingsModel::setEnhancesImagePrompts(bool enhances) {
    store([&](AppSettings& settings) { settings.enableImagePromptEnhancement = enhances; });
}

void GeneralSettingsModel::setDrawsPictures(bool draws) {
    store([&](AppSettings& settings) { settings.picturesByRequest = draws; });
}

void GeneralSettingsModel::setKeepsClipboard(bool keeps) {
    store([&](AppSettings& settings) { settings.keepClipboard = keeps; });
}

}  // namespace tavrelon::ui
