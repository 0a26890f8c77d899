#pragma once

#include <QAbstractListModel>
#include <algorithm>
#include <vector>

namespace tavrelon::ui {

/// A list of rows for a view. A new state is told as the removal and insertion of the rows that differ, so that the
/// others stay where they are. `Row` has an equality, `static QHash<int, QByteArray> roleNames()`, and
/// `QVariant value(int role) const`. Main thread.
template <typename Row>
class RowList : public QAbstractListModel {
 public:
    int rowCount(const QModelIndex& parent = {}) const override {
        return parent.isValid() ? 0 : static_cast<int>(rows_.size());
    }
    QVariant data(const QModelIndex& index, int role) const override {
        return checkIndex(index, CheckIndexOption::IndexIsValid)
                   ? rows_[static_cast<std::size_t>(index.row())].value(role)
                   : QVariant();
    }
    QHash<int, QByteArray> roleNames() const override { return Row::roleNames(); }

    const std::vector<Row>& rows() const { return rows_; }

    void replace(std::vector<Row> rows) {
        const auto head = std::ranges::mismatch(rows_, rows).in1 - rows_.begin();
        const auto limit = static_cast<std::ptrdiff_t>(std::min(rows_.size(), rows.size())) - head;
        std::ptrdiff_t tail = 0;
        while (tail < limit && *(rows_.end() - tail - 1) == *(rows.end() - tail - 1))
            ++tail;
        const auto place = [head](std::ptrdiff_t end) {
            return std::pair(static_cast<int>(head), static_cast<int>(end) - 1);
        };
        if (const auto [first, last] = place(std::ssize(rows_) - tail); last >= first) {
            beginRemoveRows({}, first, last);
            rows_.erase(rows_.begin() + head, rows_.end() - tail);
            endRemoveRows();
        }
        if (const auto [first, last] = place(std::ssize(rows) - tail); last >= first) {
            beginInsertRows({}, first, last);
            rows_.insert(rows_.begin() + head, std::make_move_iterator(rows.begin() + head),
                         std::make_move_iterator(rows.end() - tail));
            endInsertRows();
        }
    }

 private:
    std::vector<Row> rows_;
};

}  // namespace tavrelon::ui
