#pragma once

#include <QObject>
#include <QStringList>

#include "async/task_scope.h"
#include "generation/pollinations_service.h"

namespace tavrelon::ui {

/// The names of the models in the Ollama cloud, for the user to choose from. A failed listing leaves the names as they
/// were and says why. Main thread.
class OllamaCloudModels : public QObject {
    Q_OBJECT
    Q_PROPERTY(QStringList names READ names NOTIFY changed)
    Q_PROPERTY(bool isLoading READ isLoading NOTIFY changed)
    Q_PROPERTY(QString error READ error NOTIFY changed)

 public:
    /// `language` is that of the interface at the moment.
    OllamaCloudModels(async::MainLoop& loop, generation::PollinationsService& service,
                      std::function<text::Language()> language)
        : service_(service), language_(std::move(language)), tasks_(loop) {}

    const QStringList& names() const { return cloudModels_; }
    bool isLoading() const { return isLoadingCloudModels_; }
    QString error() const { return cloudModelsError_.in(language_()); }  ///< empty when there is none

    /// Lists unless that has succeeded before: what the controls call when they come on screen.
    Q_INVOKABLE void load();

    /// Lists again, unless a listing is under way.
    Q_INVOKABLE void refresh();

    /// The place of the next name after `from` that starts with `typed`, going round; -1 where there is none.
    Q_INVOKABLE qsizetype find(const QString& typed, qsizetype from) const;

    Q_SIGNAL void changed();

 private:
    async::Task<void> fetch();

    generation::PollinationsService& service_;
    std::function<text::Language()> language_;
    QStringList cloudModels_;
    text::LocalizedText cloudModelsError_;
    bool isLoadingCloudModels_ = false;
    bool hasRequestedCloudModels_ = false;
    async::TaskScope tasks_;
};

}  // namespace tavrelon::ui
