#pragma once

#include "app/undo_offers.h"
#include "learning/adaptive_prompt_learner.h"
#include "persistence/history_manager.h"

namespace tavrelon::app {

/// Clears the history and what was learned from it: who clears it does not want its inputs kept elsewhere. Both are off
/// the disk at once and stay in memory while they are on offer. All outlive the offer. Main thread.
void clearHistory(persistence::HistoryManager& history, learning::AdaptivePromptLearner& learner, UndoOffers& offers);

}  // namespace tavrelon::app
