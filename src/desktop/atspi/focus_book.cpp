#include "desktop/atspi/focus_book.h"

#include <algorithm>
#include <functional>

namespace tavrelon::desktop::atspi {

void FocusBook::gained(const ObjectReference& element) {
    if (!element.isNull())
        entries_.insert_or_assign(element.busName, Entry{element.path, nextOrder_++});
}

void FocusBook::lost(const ObjectReference& element) {
    const auto entry = entries_.find(element.busName);
    if (entry != entries_.end() && entry->second.path == element.path)
        entries_.erase(entry);
}

void FocusBook::found(const ObjectReference& element, const std::optional<ObjectReference>& before) {
    const auto entry = entries_.find(element.busName);
    const bool known = before && before->busName == element.busName;
    const bool spoke = known ? entry == entries_.end() || entry->second.path != before->path : entry != entries_.end();
    if (!spoke)
        gained(element);
}

void FocusBook::forget(const QString& busName) {
    entries_.erase(busName);
}

void FocusBook::clear() {
    entries_.clear();
}

std::vector<ObjectReference> FocusBook::elements() const {
    std::vector<std::pair<quint64, ObjectReference>> ordered;
    for (const auto& [busName, entry] : entries_)
        ordered.push_back({entry.order, {busName, entry.path}});
    std::ranges::sort(ordered, std::greater{}, &std::pair<quint64, ObjectReference>::first);
    std::vector<ObjectReference> elements;
    for (auto& [order, element] : ordered)
        elements.push_back(std::move(element));
    return elements;
}

}  // namespace tavrelon::desktop::atspi
