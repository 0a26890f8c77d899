#pragma once

#include "async/task_scope.h"
#include "generation/pollinations_service.h"
#include "generation/server_probe.h"
#include "ui/dashboard/page_model.h"

namespace tavrelon::ui {

/// The model servers that answer on this machine, for the user to take one. Nothing but loopback is asked, and only
/// while a view wants to know. Main thread.
class FoundServers : public PageModel {
    Q_OBJECT
    Q_PROPERTY(QVariantList servers READ servers NOTIFY changed)
    Q_PROPERTY(bool isNothingChosen READ isNothingChosen NOTIFY changed)

 public:
    struct Services {
        async::MainLoop& mainLoop;
        persistence::StorageManager& storage;
        generation::PollinationsService& pollinations;
        platform::HttpSession& httpSession;
    };

    explicit FoundServers(Services services);

    /// Whether requests go where they go without any choice of the user's.
    bool isNothingChosen() const;

    /// Records of `title`, `baseURL` and `models`, each of these a record of `name` and `isTextOnly`.
    QVariantList servers() const;

    /// Asks at all usual places anew, unless that is under way. What is known stays until the answers are there.
    Q_INVOKABLE void look();

    /// One of the list's servers and one of its models answer from now on. Others are not taken.
    Q_INVOKABLE void take(const QString& baseURL, const QString& model);

    Q_SIGNAL void taken();

 private:
    async::Task<void> ask(std::size_t place);

    Services services_;
    std::vector<std::optional<generation::LocalServer>> found_{generation::usualServerPlaces().size()};
    async::TaskScope tasks_;
};

}  // namespace tavrelon::ui
