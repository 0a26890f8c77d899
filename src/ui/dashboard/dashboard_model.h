#pragma once

#include <map>
#include <vector>

#include "app/readiness.h"
#include "app/undo_offers.h"
#include "ui/dashboard/dashboard_page.h"

namespace tavrelon::ui {

/// What the shell asks and does outside of the window.
struct DashboardSurroundings {
    std::function<void()> openDonationPage;  ///< in the browser; null where there is none
    std::function<app::Readiness()> readiness;
    app::UndoOffers& undoOffers;
};

/// The shell of the dashboard: which page is shown, the language, the help. What is neither stored nor a page's own
/// starts anew with each window.
class DashboardModel : public PageModel {
    Q_OBJECT
    Q_PROPERTY(QVariantList tabs READ tabs NOTIFY changed)
    Q_PROPERTY(int selection READ selection WRITE select NOTIFY selectionChanged)
    Q_PROPERTY(QString pageView READ pageView NOTIFY selectionChanged)
    Q_PROPERTY(QObject* pageModel READ pageModel NOTIFY selectionChanged)
    Q_PROPERTY(QString state READ state NOTIFY changed)
    Q_PROPERTY(bool isActive READ isActive NOTIFY changed)
    Q_PROPERTY(bool canDonate READ canDonate CONSTANT)
    Q_PROPERTY(bool showingHelp MEMBER showingHelp_ NOTIFY showingHelpChanged)
    Q_PROPERTY(QVariantList undoOffers READ undoOffers NOTIFY undoOffersChanged)
    Q_PROPERTY(QVariantList helpSections READ helpSections NOTIFY changed)

 public:
    /// `pages`, `surroundings` and what their functions refer to outlive the model.
    DashboardModel(persistence::StorageManager& storage, const std::vector<DashboardPage>& pages,
                   const DashboardSurroundings& surroundings);
    ~DashboardModel() override;

    /// The name and the symbol of each tab that has a page.
    QVariantList tabs() const;

    /// An index into `tabs`; one that is out of range changes nothing.
    int selection() const { return static_cast<int>(selection_); }
    void select(int index);

    QString pageView() const;
    PageModel* pageModel() const { return current_; }

    /// Whether a hotkey leads to an answer, in a word or two.
    QString state() const;
    bool isActive() const { return surroundings_.readiness() == app::Readiness::active; }

    /// What can be taken back at the moment, each a record of `what` and `text`; the last is at the end.
    QVariantList undoOffers() const;
    Q_INVOKABLE void undo(int what);
    Q_INVOKABLE void undoLast();

    QVariantList helpSections() const;

    // Operations and not properties, of which a view would read the whole list again for each number.
    Q_INVOKABLE QVariantList farStars() const;
    Q_INVOKABLE QVariantList nearStars() const;

    Q_INVOKABLE void switchLanguage();
    bool canDonate() const { return static_cast<bool>(surroundings_.openDonationPage); }
    Q_INVOKABLE void donate() {
        if (canDonate())
            surroundings_.openDonationPage();
    }

    Q_SIGNAL void selectionChanged();
    Q_SIGNAL void showingHelpChanged();
    Q_SIGNAL void undoOffersChanged();

 private:
    void show(std::size_t index);

    const std::vector<DashboardPage>& pages_;
    const DashboardSurroundings& surroundings_;
    std::map<std::size_t, std::unique_ptr<PageModel>> models_;  ///< of the pages seen so far
    std::size_t selection_ = 0;
    PageModel* current_ = nullptr;
    bool showingHelp_ = false;
    persistence::ChangeSubscription undoSubscription_;
};

}  // namespace tavrelon::ui
