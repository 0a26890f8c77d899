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
    if (!machine_.isCurrentTask(id) || !machine_.ensureNoPasswordField())
        co_return;
    const auto context = co_await services_.contextCapturer.captureContext(QString(), capture::ScreenshotWish::Include);
    if (machine_.isCurrentTask(id))
        co_await reply(id, context);
}

async::Task<void> AutoReplyFlow::reply(const QUuid& id, const capture::CapturedContext& context) {
    const auto selection = context.selection ? text::trimmed(*context.selection) : QString();
    const auto prompt = selection.isEmpty() ? promptWithoutSelection : promptBeforeSelection + selection;
    const auto& settings = services_.storageManager.settings();
    std::optional<QString> userStyle;
    if (settings.enableLocalLearning)
        userStyle = services_.historyManager.userStyleProfile(std::max<qint64>(settings.maxHistoryEntries, 0));
    const auto retried = co_await generateWithRetry(
        machine_, services_.platform.mainLoop, id, services_.generator.deadline(),
        [this, &context, prompt, userStyle] { return generateOnce(prompt, context, userStyle); });
    if (!machine_.isCurrentTask(id))
        co_return;
    std::optional<StoredWrite> writing(
        std::in_place, services_.platform,
        [this, entry = historyEntryOf(context, retried.result,
                                      {selection, retried.result.text.value_or(QStringLiteral("[Auto Reply]")),
                                       QStringLiteral("reply"), retried.retryCount},
                                      services_.platform.mainLoop.wallTime())] {
            services_.historyManager.addEntry(entry);
        });
    if (retried.result.text) {
        co_await async::pause(services_.platform.mainLoop, 50ms);
        const auto placement = co_await services_.outputWriter.pasteText(*retried.result.text);
        if (!machine_.isCurrentTask(id))
            co_return;
        output::ensureWritten(placement);
    }
    writing.reset();
    co_await machine_.complete(id, 2s);
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
