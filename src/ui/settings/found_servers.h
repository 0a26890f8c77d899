#pragma once

#include <QObject>
#include <QVariantList>
#include <functional>

#include "async/task_scope.h"
#include "generation/server_probe.h"

namespace tavrelon::ui {

/// The model servers that answer on this machine, for the user to take one. Nothing but loopback is asked, and only
/// while a view wants to know. Main thread.
class FoundServers : public QObject {
    Q_OBJECT
    Q_PROPERTY(QVariantList servers READ servers NOTIFY changed)

 public:
    /// Gets the base URL and the model that the user took.
    using Taken = std::function<void(const QString& baseURL, const generation::ServedModel& model)>;

    FoundServers(async::MainLoop& loop, platform::HttpSession& session, Taken taken)
        : session_(session), taken_(std::move(taken)), tasks_(loop) {}

    /// Records of `title`, `baseURL` and `models`, each of these a record of `name` and `isTextOnly`.
    QVariantList servers() const;

    /// Asks at all usual places anew, unless that is under way. What is known stays until the answers are there.
    Q_INVOKABLE void look();

    /// One of the list's servers and one of its models. Others are not taken.
    Q_INVOKABLE void take(const QString& baseURL, const QString& model);

    Q_SIGNAL void changed();

 private:
    async::Task<void> ask(std::size_t place);

    platform::HttpSession& session_;
    Taken taken_;
    std::vector<std::optional<generation::LocalServer>> found_{generation::usualServerPlaces().size()};
    async::TaskScope tasks_;
};

}  // namespace tavrelon::ui
