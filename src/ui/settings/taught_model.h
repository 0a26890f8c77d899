#pragma once

#include <vector>

#include "persistence/taught.h"
#include "ui/dashboard/page_model.h"

namespace tavrelon::ui {

/// What services taught, as several pages show it: who and when, whether it is set aside since the provider was
/// changed, and the user's answer to that. Main thread.
class TaughtModel : public PageModel {
    Q_OBJECT
    Q_PROPERTY(bool isTaught READ isTaught NOTIFY changed)
    Q_PROPERTY(bool isSetAside READ isSetAside NOTIFY changed)
    Q_PROPERTY(QString origin READ origin NOTIFY changed)

 public:
    /// `storage` outlives the model.
    TaughtModel(persistence::StorageManager& storage, std::vector<persistence::Taught> what);

    bool isTaught() const;

    /// Whether any of it is; the answers below are about all that is.
    bool isSetAside() const;

    /// Who taught it, as far as that is known; empty when nothing was taught.
    QString origin() const;

    Q_INVOKABLE void keep();    ///< the provider chosen now may have it
    Q_INVOKABLE void remove();  ///< of what is set aside, or of all if nothing is

 private:
    std::vector<persistence::Taught> what_;
};

}  // namespace tavrelon::ui
