#pragma once

#include <QStringList>
#include <functional>
#include <optional>

#include "async/task.h"
#include "async/waits.h"
#include "generation/destinations.h"
#include "platform/defaults_store.h"

namespace tavrelon::app {

/// Lets nothing of the user's go to a public service before he has said yes once: for each origin, and again when a
/// picture goes along for the first time. Only the yes is stored. Main thread.
class ServiceConsent {
 public:
    struct Question {
        QStringList hosts;
        generation::RequestContents contents;
    };

    /// Shows the question, or takes it away where there is none.
    using Show = std::function<void(const std::optional<Question>&)>;

    /// The store outlives this object, and this object outlives the tasks it gives out.
    ServiceConsent(async::MainLoop& mainLoop, platform::DefaultsStore& store) : mainLoop_(mainLoop), store_(store) {}

    Show show = [](const std::optional<Question>&) {};

    /// Returns once the request may be sent to all of these, at once where nothing needs to be asked. Throws
    /// `async::CancellationError` when the awaiting task was asked to stop or nobody has answered for a minute.
    async::Task<void> obtain(std::vector<QUrl> destinations, generation::RequestContents contents);

    /// A service that the user said yes to.
    struct Allowed {
        QString origin;
        generation::RequestContents contents = generation::RequestContents::Text;  ///< `Picture` includes text
    };
    std::vector<Allowed> allowed() const;

    /// Takes the yes back: the next request to this service asks again.
    void forget(const QString& origin);

    bool isAllowed(const std::vector<QUrl>& destinations, generation::RequestContents contents) const;

    /// The user's yes to the question on show. Too soon after it came it was meant for something else.
    void confirm();

 private:
    QStringList missing(const std::vector<QUrl>& destinations, generation::RequestContents contents) const;
    async::Task<void> answer(Question question);

    struct Pending {
        quint64 number;
        async::Instant since;
        std::function<void()> confirm;
    };

    async::MainLoop& mainLoop_;
    platform::DefaultsStore& store_;
    quint64 lastNumber_ = 0;
    std::optional<Pending> pending_;
};

}  // namespace tavrelon::app
