#pragma once

#include <QObject>
#include <QUrl>
#include <exception>
#include <optional>

#include "async/task_scope.h"
#include "learning/clone_service.h"
#include "persistence/storage_manager.h"

namespace tavrelon::ui {

enum class CloneLearningTarget : std::uint8_t { Link, File };

/// Learns one clone profile at a time and keeps it in the settings, whether or not the page is still on screen. A
/// failure leaves what was learned before. Main thread.
class CloneLearner : public QObject {
    Q_OBJECT

 public:
    /// The services outlive this object; its end ends a learning under way.
    struct Services {
        async::MainLoop& mainLoop;
        persistence::StorageManager& storage;
        learning::CloneService& clone;
    };

    explicit CloneLearner(Services services) : services_(services), tasks_(services.mainLoop) {}

    /// What is being learned from at the moment.
    const std::optional<CloneLearningTarget>& activeTarget() const { return activeTarget_; }

    // Both do nothing while a learning is under way.
    void learnFromLink(const QString& link);
    void learnFromFile(const QUrl& file);

    /// How the last learning ended, once: a null pointer for a success, else the error.
    std::optional<std::exception_ptr> takeOutcome() { return std::exchange(outcome_, std::nullopt); }

    /// A learning began or ended.
    Q_SIGNAL void changed();

 private:
    void start(CloneLearningTarget target, async::Task<learning::CloneProfile> learning);
    async::Task<learning::CloneProfile> learnFile(QUrl file);
    async::Task<void> finish(async::Task<learning::CloneProfile> learning, QString provider);
    void keep(const learning::CloneProfile& profile, const QString& provider);

    Services services_;
    std::optional<CloneLearningTarget> activeTarget_;
    std::optional<std::exception_ptr> outcome_;
    async::TaskScope tasks_;
};

}  // namespace tavrelon::ui
