#pragma once

#include <map>
#include <vector>

#include "ui/dashboard/dashboard_page.h"

namespace tavrelon::ui {

/// The shell of the dashboard: which page is shown, the language, the help. What is neither stored nor a page's own
/// starts anew with each window.
class DashboardModel : public PageModel {
    Q_OBJECT
    Q_PROPERTY(QVariantList tabs READ tabs NOTIFY changed)
    Q_PROPERTY(int selection READ selection WRITE select NOTIFY selectionChanged)
    Q_PROPERTY(QString pageView READ pageView NOTIFY selectionChanged)
    Q_PROPERTY(QObject* pageModel READ pageModel NOTIFY selectionChanged)
    Q_PROPERTY(QString searchText MEMBER searchText_ NOTIFY searchTextChanged)
    Q_PROPERTY(bool showingHelp MEMBER showingHelp_ NOTIFY showingHelpChanged)
    Q_PROPERTY(QVariantList helpSections READ helpSections NOTIFY changed)

 public:
    /// `pages` and what their functions refer to outlive the model. `openDonationPage` opens the browser.
    DashboardModel(persistence::StorageManager& storage, const std::vector<DashboardPage>& pages,
                   std::function<void()> openDonationPage);
    ~DashboardModel() override;

    /// The name and the symbol of each tab that has a page.
    QVariantList tabs() const;

    /// An index into `tabs`; one that is out of range changes nothing.
    int selection() const { return static_cast<int>(selection_); }
    void select(int index);

    QString pageView() const;
    PageModel* pageModel() const { return current_; }

    QVariantList helpSections() const;

    // Operations and not properties, of which a view would read the whole list again for each number.
    Q_INVOKABLE QVariantList farStars() const;
    Q_INVOKABLE QVariantList nearStars() const;

    Q_INVOKABLE void switchLanguage();
    Q_INVOKABLE void donate() { openDonationPage_(); }

    Q_SIGNAL void selectionChanged();
    Q_SIGNAL void searchTextChanged();
    Q_SIGNAL void showingHelpChanged();

 private:
    void show(std::size_t index);

    const std::vector<DashboardPage>& pages_;
    std::function<void()> openDonationPage_;
    std::map<std::size_t, std::unique_ptr<PageModel>> models_;  ///< of the pages seen so far
    std::size_t selection_ = 0;
    PageModel* current_ = nullptr;
    QString searchText_;
    bool showingHelp_ = false;
};

}  // namespace tavrelon::ui
