#include "app/history_clearing.h"

namespace tavrelon::app {

void clearHistory(persistence::HistoryManager& history, learning::AdaptivePromptLearner& learner, UndoOffers& offers) {
    auto cleared = history.clearHistory();
    auto forgotten = learner.forget();
    const bool isSeen = !cleared.isEmpty() || !forgotten->taught.texts.join(QString()).isEmpty();
    if (!isSeen)
        return;
    offers.offer(Undoable::HistoryClearing,
                 [&history, &learner, cleared = std::move(cleared), forgotten = std::move(forgotten)] {
                     history.restore(cleared);
                     learner.recall(forgotten);
                 });
}

}  // namespace tavrelon::app
