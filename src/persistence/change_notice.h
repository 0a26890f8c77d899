#pragma once

#include <QProperty>

namespace tavrelon::persistence {

/// A handler's place among the subscribers; dropping it unsubscribes. It may outlive the notice.
using ChangeSubscription = QPropertyNotifier;

/// Tells subscribers that their subject changed, but not what. Main thread.
class ChangeNotice {
 public:
    template <typename Handler>
    [[nodiscard]] ChangeSubscription subscribe(Handler handler) const {
        return ChangeSubscription(revision_, std::move(handler));
    }

    /// Calls every subscriber before it returns.
    void announce() { revision_ = revision_.value() + 1; }

 private:
    QProperty<quint64> revision_{0};
};

}  // namespace tavrelon::persistence
