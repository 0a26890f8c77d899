#include "input/history_record.h"

#include "text/foreign_text.h"

namespace tavrelon::input {

persistence::HistoryEntry historyEntryOf(const capture::CapturedContext& context,
                                         const generation::GenerationResult& result, AnswerRecord record,
                                         std::chrono::system_clock::time_point now) {
    const auto& decision = result.decisionObject;
    persistence::HistoryEntry entry;
    entry.id = QUuid::createUuid();
    entry.timestamp = now;
    if (decision)
        entry.sceneID = decision->sceneID;
    entry.intent = decision ? decision->intent : std::move(record.intent);
    entry.appBundleID = context.appBundleID;
    entry.appName = context.appName;
    entry.windowTitle = context.windowTitle;
    entry.inputText = text::withoutControls(record.inputText);
    entry.outputText = text::writableAnswer(record.outputText);
    entry.retryCount = record.retryCount;
    return entry;
}

}  // namespace tavrelon::input
