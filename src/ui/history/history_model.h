#pragma once

#include <functional>

#include "persistence/history_manager.h"
#include "ui/dashboard/page_model.h"
#include "ui/history/history_rows.h"
#include "ui/history/row_list.h"

namespace tavrelon::ui {

/// The history page: past requests by application, searched, and as a conversation for the chosen application. It
/// follows the history and changes nothing in it but by clearing it. Main thread.
class HistoryModel : public PageModel {
    Q_OBJECT
    Q_PROPERTY(QString searchText READ searchText WRITE setSearchText NOTIFY changed)
    Q_PROPERTY(QString selectedAppID READ selectedAppID WRITE selectApp NOTIFY changed)
    Q_PROPERTY(bool isEmpty READ isEmpty NOTIFY changed)
    Q_PROPERTY(bool hasConversation READ hasConversation NOTIFY changed)
    Q_PROPERTY(QString conversationName READ conversationName NOTIFY changed)
    Q_PROPERTY(QString conversationCount READ conversationCount NOTIFY changed)
    Q_PROPERTY(QAbstractItemModel* groups READ groups CONSTANT)
    Q_PROPERTY(QAbstractItemModel* conversation READ conversation CONSTANT)

 public:
    /// The managers outlive this object. `clear` is to clear the history. `locale` is that of the user, for dates and
    /// for what counts as one letter.
    HistoryModel(persistence::StorageManager& storage, persistence::HistoryManager& history,
                 std::function<void()> clear, const QLocale& locale = QLocale());

    const QString& searchText() const { return searchText_; }
    void setSearchText(const QString& typed);

    /// The `id` of the group on show; empty for none. A group that the search hides stays chosen.
    const QString& selectedAppID() const { return selectedAppID_; }
    void selectApp(const QString& id);

    /// Shows only entries with this intent; the empty text shows all.
    void setFilterIntent(const QString& intent);

    bool isEmpty() const { return groups_.rows().empty(); }
    bool hasConversation() const { return !conversation_.rows().empty(); }
    const QString& conversationName() const { return conversationName_; }
    const QString& conversationCount() const { return conversationCount_; }

    QAbstractItemModel* groups() { return &groups_; }
    QAbstractItemModel* conversation() { return &conversation_; }

    /// Without a question.
    Q_INVOKABLE void clear();

 private:
    void refresh();
    std::optional<HistoryImage> findImage(const QString& outputImagePath) const;

    persistence::HistoryManager& history_;
    std::function<void()> clear_;
    QLocale locale_;
    HistorySearch search_;
    QString searchText_;
    QString filterIntent_;
    QString selectedAppID_;
    QString conversationName_;
    QString conversationCount_;
    RowList<HistoryAppRow> groups_;
    RowList<HistoryPieceRow> conversation_;
    persistence::ChangeSubscription subscription_;
    persistence::ChangeSubscription settingsSubscription_;
    text::Language shownLanguage_ = text::Language::Chinese;
};

}  // namespace tavrelon::ui
