#pragma once

#include <map>
#include <optional>
#include <vector>

#include "desktop/atspi/atspi_protocol.h"

namespace tavrelon::desktop::atspi {

/// Which element of each application said last that it has the focus.
class FocusBook {
 public:
    void gained(const ObjectReference& element);

    /// Forgets the element unless another one of the application has taken over: the news of the new element may come
    /// before that of the old one.
    void lost(const ObjectReference& element);

    /// Enters an element that was found by looking, unless its application spoke since `before` was its element.
    void found(const ObjectReference& element, const std::optional<ObjectReference>& before);

    void forget(const QString& busName);
    void clear();

    /// The latest first.
    std::vector<ObjectReference> elements() const;

 private:
    struct Entry {
        QString path;
        quint64 order = 0;
    };
    std::map<QString, Entry> entries_;
    quint64 nextOrder_ = 1;
};

}  // namespace tavrelon::desktop::atspi
