#include "input/auto_reply_flow.h"

#include "async/waits.h"
#include "input/history_record.h"
#include "input/request_settings.h"

namespace tavrelon::input {

using namespace std::chrono_literals;

namespace {

const auto promptWithoutSelection = QStringLiteral("请根据当前上下文直接输出一条合适的回复正文，不要加前缀或解释。");
const auto promptBeforeSelection = QStringLiteral("请直接输出回复正文，不要加前缀或解释：\n");

}  // namespace

void AutoReplyFlow::startAutoReply() {
    if (!machine_.takeStage() || !machine_.ensureAIEnabled() || !machine_.ensureNoPasswordField())
        return;
    services_.outputWriter.aim();
    machine_.enterProcessingLater(InputTrigger::autoReply);
    machine_.beginProcessingTask(QStringLiteral("Error processing auto reply: "),
                                 [this](QUuid id) { return processAutoReply(id); });
}

async::Task<void> AutoReplyFlow::processAutoReply(QUuid id) {
    machine_.requireCurrent(id);
    if (!machine_.ensureNoPasswordField())
        co_return;
    const auto context = co_await services_.contextCapturer.captureContext(QString(), capture::ScreenshotWish::Include);
    machine_.requireCurrent(id);
    co_await reply(id, context);
    co_await machine_.complete(id, 2s);
}

async::Task<void> AutoReplyFlow::reply(const QUuid& id, const capture::CapturedContext& context) {
    const auto selection = context.selection ? text::trimmed(*context.selection) : QString();
    const auto prompt = selection.isEmpty() ? promptWithoutSelection : promptBeforeSelection + selection;
    const auto& settings = services_.storageManager.settings();
    std::optional<QString> userStyle;
    if (settings.enableLocalLearning)
        userStyle = services_.historyManager.userStyleProfile(std::max<qint64>(settings.maxHistoryEntries, 0));
    const auto answered = co_await generateWithRetry(
        machine_, services_.platform.mainLoop, id, services_.generator.deadline(),
        [this, &context, prompt, userStyle] { return generateOnce(prompt, context, userStyle); });
    machine_.requireCurrent(id);
    const auto& text = answered.result.text;
    const StoredWrite writing(
        services_, historyEntryOf(context, answered,
                                  {selection, text.value_or(QStringLiteral("[Auto Reply]")), QStringLiteral("reply")},
                                  services_.platform.mainLoop.wallTime()));
    if (!text)
        co_return;
    co_await async::pause(services_.platform.mainLoop, 50ms);
    const auto placement = co_await services_.outputWriter.pasteText(*text);
    machine_.requireCurrent(id);
    output::ensureWritten(placement);
}

async::Task<generation::GenerationResult> AutoReplyFlow::generateOnce(QString prompt,
                                                                      const capture::CapturedContext& context,
                                                                      std::optional<QString> userStyle) {
    const auto& settings = services_.storageManager.settings();
    co_return co_await services_.generator.generate(
        {.input = std::move(prompt),
         .context = context,
         .voice = voiceForRequest(settings, std::move(userStyle), adaptivePromptForRequest(settings)),
         .mayDraw = false});  // the words are those of somebody's message
}

}  // namespace tavrelon::input
