#include "ui/dashboard/dashboard_model.h"

#include <algorithm>

#include "ui/dashboard/dashboard_texts.h"
#include "ui/dashboard/star_layer.h"

namespace tavrelon::ui {

namespace {

const DashboardTabLook& lookOf(DashboardTab tab) {
    return *std::ranges::find(dashboardTabs, tab, &DashboardTabLook::tab);
}

}  // namespace

DashboardModel::DashboardModel(persistence::StorageManager& storage, const std::vector<DashboardPage>& pages,
                               const DashboardSurroundings& surroundings)
    : PageModel(storage, dashboardTexts),
      pages_(pages),
      surroundings_(surroundings),
      undoSubscription_(surroundings.undoOffers.onChange([this] { Q_EMIT undoOffersChanged(); })) {
    if (!pages_.empty())
        show(0);
}

DashboardModel::~DashboardModel() {
    if (current_)
        current_->disappear();
}

QVariantList DashboardModel::tabs() const {
    QVariantList list;
    for (const auto& page : pages_) {
        const auto& look = lookOf(page.tab);
        list << QVariantMap{
            {QStringLiteral("name"), (isEnglish() ? look.english : look.chinese).toString()},
            {QStringLiteral("symbol"), look.symbol.toString()},
        };
    }
    return list;
}

void DashboardModel::select(int index) {
    if (index < 0 || index >= static_cast<int>(pages_.size()) || index == selection())
        return;
    current_->disappear();
    show(static_cast<std::size_t>(index));
}

void DashboardModel::show(std::size_t index) {
    auto& model = models_[index];
    if (!model)
        model = pages_[index].makeModel();
    selection_ = index;
    current_ = model.get();
    current_->appear();
    Q_EMIT selectionChanged();
}

QString DashboardModel::pageView() const {
    return pages_.empty() ? QString() : QStringLiteral("qrc:/tavrelon/ui/%1.qml").arg(pages_[selection_].view);
}

QString DashboardModel::state() const {
    switch (surroundings_.readiness()) {
        case app::Readiness::active:
            break;
        case app::Readiness::hotkeysOff:
            return text(u"hotkeysOff");
        case app::Readiness::noModel:
            return text(u"noModel");
        case app::Readiness::noKeyboardAccess:
            return text(u"noKeyboardAccess");
    }
    return text(u"active");
}

QVariantList DashboardModel::undoOffers() const {
    QVariantList list;
    for (const auto what : surroundings_.undoOffers.standing())
        list << QVariantMap{
            {QStringLiteral("what"), static_cast<int>(what)},
            {QStringLiteral("text"),
             text(what == app::Undoable::HistoryClearing ? u"historyCleared" : u"hotkeysReset")},
        };
    return list;
}

void DashboardModel::undo(int what) {
    surroundings_.undoOffers.undo(static_cast<app::Undoable>(what));
    if (current_)
        current_->appear();  // what the page has read of the desktop may have changed with it
}

void DashboardModel::undoLast() {
    if (const auto standing = surroundings_.undoOffers.standing(); !standing.empty())
        undo(static_cast<int>(standing.back()));
}

QVariantList DashboardModel::helpSections() const {
    QVariantList sections;
    for (const auto& section : ui::helpSections) {
        QStringList items;
        for (const auto& item : section.items)
            if (!item.english.isEmpty())
                items << (isEnglish() ? item.english : item.chinese).toString();
        sections << QVariantMap{
            {QStringLiteral("title"), (isEnglish() ? section.title.english : section.title.chinese).toString()},
            {QStringLiteral("items"), items},
        };
    }
    return sections;
}

QVariantList DashboardModel::farStars() const {
    return toVariantList(ui::farStars());
}

QVariantList DashboardModel::nearStars() const {
    return toVariantList(ui::nearStars());
}

void DashboardModel::switchLanguage() {
    const auto language = isEnglish() ? QStringLiteral("zh") : QStringLiteral("en");
    store([&](persistence::AppSettings& settings) { settings.appLanguage = language; });
}

}  // namespace tavrelon::ui
