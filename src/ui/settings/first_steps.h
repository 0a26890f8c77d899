#pragma once

#include "ui/settings/found_servers.h"

namespace tavrelon::ui {

/// What a new user needs until the first answer has come: somebody to ask, the keys to press, and a field to try them
/// in. Main thread.
class FirstSteps : public PageModel {
    Q_OBJECT
    Q_PROPERTY(bool isWanted READ isWanted CONSTANT)
    Q_PROPERTY(bool hasAnswered READ hasAnswered NOTIFY changed)
    Q_PROPERTY(QString keyName READ keyName NOTIFY changed)
    Q_PROPERTY(tavrelon::ui::FoundServers* found READ found CONSTANT)

 public:
    explicit FirstSteps(FoundServers::Services services);

    /// Stays as it is for the life of the model: the first answer may come into this very view.
    bool isWanted() const { return isWanted_; }
    bool hasAnswered() const { return settings().hasAnswered; }

    /// The hotkey of a typed request in words.
    QString keyName() const;

    FoundServers* found() { return &found_; }

 private:
    FoundServers found_;
    bool isWanted_;
};

}  // namespace tavrelon::ui
