#include "ui/history/history_page.h"

#include "app/history_clearing.h"
#include "ui/history/history_model.h"

namespace tavrelon::ui {

DashboardPage historyPage(app::AppState& appState) {
    return {
        DashboardTab::history, QStringLiteral("history/HistoryView"), [&appState] {
            return std::make_unique<HistoryModel>(appState.storageManager(), appState.historyManager(), [&appState] {
                app::clearHistory(appState.historyManager(), appState.adaptivePromptLearner(), appState.undoOffers());
            });
        }};
}

}  // namespace tavrelon::ui
