#include "input/history_record.h"

#include <utility>

#include "text/foreign_text.h"

namespace tavrelon::input {

persistence::HistoryEntry historyEntryOf(const capture::CapturedContext& context, const RetriedResult& answered,
                                         AnswerRecord record, std::chrono::system_clock::time_point now) {
    const auto& decision = answered.result.decisionObject;
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
    entry.retryCount = answered.retryCount;
    return entry;
}

StoredWrite::StoredWrite(platform::Platform& platform, Store store) : log_(platform.log), store_(std::move(store)) {
    log_.line(QStringLiteral("[StateMachine] Writing"));
    platform.mainLoop.post(lifetime_.guard([this] { storeOnce(); }));
}

StoredWrite::StoredWrite(const InputServices& services, persistence::HistoryEntry entry)
    : StoredWrite(services.platform, [&history = services.historyManager, stored = std::move(entry)]() mutable {
          history.addEntry(std::move(stored));
      }) {}

StoredWrite::~StoredWrite() {
    storeOnce();
    log_.line(QStringLiteral("[StateMachine] Writing ended"));
}

void StoredWrite::storeOnce() {
    if (const auto store = std::exchange(store_, nullptr))
        store();
}

}  // namespace tavrelon::input
